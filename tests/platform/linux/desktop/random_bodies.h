// What a hostile program puts into its messages.
#pragma once

#include <QString>
#include <QVariant>
#include <QVariantList>
#include <random>

namespace tarnwick::platform::testing {

/// The arguments' types as the bus writes them.
QString signatureOf(const QVariantList& body);

/// Arguments of messages: basic types, arrays, dictionaries, variants and structures in each other.
/// The same ones in every run.
class RandomBodies final {
 public:
    RandomBodies();

    /// Unlike anything in particular, perhaps empty; or like `truth` but for an argument, or for
    /// what is in its variants and dictionaries.
    QVariantList next(const QVariantList& truth);
    /// From 0 up to, but not including, `limit`.
    int roll(int limit);

 private:
    QVariant value(int depth);
    QVariant basic();
    QVariant structure(int depth);
    QVariantMap dictionary(int depth);
    /// Of the same type as far as its signature says.
    QVariant withOtherContent(const QVariant& value);

    std::mt19937 random_;
};

}  // namespace tarnwick::platform::testing
