// SPDX-License-Identifier: MIT
// A style for texts: a font, its measures, and digits of equal width.
#pragma once

#include <QColor>
#include <QFont>
#include <QFontMetricsF>
#include <QHash>
#include <QPointF>
#include <QString>
#include <memory>

class QPainter;

namespace tarnwick::qt {

/// Changing numbers must not move the text around them. So if the font's digits have different
/// widths, each digit is centred in a cell as wide as the widest one. All measures are logical
/// pixels.
///
/// Remembers the widths of the latest texts, because the toolkit shapes a text anew each time that
/// it is asked; copies share them. Main thread.
class TextStyle {
 public:
    explicit TextStyle(const QFont& font);

    const QFont& font() const { return font_; }
    /// The same at a share of its size, above 0.
    TextStyle scaled(qreal share) const;
    /// Height of a line, whole pixels.
    int lineHeight() const { return ascent_ + descent_; }
    /// From the top of a line to its baseline, whole pixels.
    int ascent() const { return ascent_; }
    int descent() const { return descent_; }

    qreal width(const QString& text) const;
    /// The text cut at the end with an ellipsis where it is wider than `width`.
    QString elided(const QString& text, qreal width) const;
    /// `baseline` is the left end of the text's baseline.
    void draw(QPainter& painter, const QPointF& baseline, const QString& text,
              const QColor& colour) const;

 private:
    bool usesCells(const QString& text) const;
    template <class Visit>
    void forEachRun(const QString& text, Visit visit) const;
    /// The width of a text as the font has it.
    qreal advance(const QString& text) const;

    QFont font_;
    QFontMetricsF metrics_;
    int ascent_;
    int descent_;
    qreal digitCell_ = 0;
    bool digitsDiffer_ = false;
    std::shared_ptr<QHash<QString, qreal>> advances_ = std::make_shared<QHash<QString, qreal>>();
};

}  // namespace tarnwick::qt
