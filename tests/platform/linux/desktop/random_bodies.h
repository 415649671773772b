// SPDX-License-Identifier: MIT
// Message contents that a hostile program could send.
#pragma once

#include <QString>
#include <QVariant>
#include <QVariantList>
#include <functional>

namespace tarnwick::platform::testing {

/// The arguments' types as the bus writes them.
QString signatureOf(const QVariantList& body);

/// Arguments of messages: basic types, arrays, dictionaries, variants and structures, nested in
/// each other.
class RandomBodies final {
 public:
    /// Any numbers; what is made depends on nothing else.
    using Source = std::function<unsigned()>;

    /// The same sequence in every run.
    RandomBodies();
    explicit RandomBodies(Source source);

    /// Either random arguments, perhaps none; or the arguments of `truth` with one of them
    /// inserted, removed or replaced, or with other contents in its variants and dictionaries.
    QVariantList next(const QVariantList& truth);
    /// From 0 up to, but not including, `limit`.
    int roll(int limit);

 private:
    QVariant value(int depth);
    QVariant basic();
    QVariant structure(int depth);
    QVariantMap dictionary(int depth);
    /// The value with other contents in its variants and dictionaries. Its signature stays.
    QVariant withOtherContent(const QVariant& value);

    Source random_;
};

}  // namespace tarnwick::platform::testing
