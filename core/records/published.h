// SPDX-License-Identifier: MIT
// Observation: a published field announces a change to its observers before it is written.
//
// Main thread only. During the call the observer still reads the old value. It should mark itself
// stale and read again on a later turn of the main queue.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace tarnwick {

/// Ends an observation when destroyed. May outlive what it observes.
class Subscription {
 public:
    Subscription() = default;
    explicit Subscription(std::function<void()> cancel) : cancel_(std::move(cancel)) {}
    Subscription(Subscription&& other) noexcept : cancel_(std::exchange(other.cancel_, nullptr)) {}
    Subscription& operator=(Subscription&& other) noexcept {
        if (this != &other) {
            cancel();
            cancel_ = std::exchange(other.cancel_, nullptr);
        }
        return *this;
    }
    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;
    ~Subscription() { cancel(); }

    /// Ends the observation now; does nothing the second time.
    void cancel() {
        if (auto action = std::exchange(cancel_, nullptr)) {
            action();
        }
    }

 private:
    std::function<void()> cancel_;
};

/// A list of observers. Observers may be added and removed while one of them is being called: a
/// removed one is not called any more; an added one is called from the next announcement on.
class Announcer {
 public:
    using Observer = std::function<void()>;

    [[nodiscard]] Subscription observe(Observer observer);
    void announce();

 private:
    struct Entry {
        std::uint64_t id;
        std::shared_ptr<Observer> observer;
    };
    struct State {
        std::vector<Entry> entries;
        std::uint64_t nextId = 0;
    };

    std::shared_ptr<State> state_ = std::make_shared<State>();
};

/// An object with published fields. Announces each write before it happens.
class ObservableObject {
 public:
    ObservableObject() = default;
    ObservableObject(const ObservableObject&) = delete;
    ObservableObject& operator=(const ObservableObject&) = delete;

    /// Calls `observer` before each write of any published field.
    [[nodiscard]] Subscription objectWillChange(Announcer::Observer observer) {
        return announcer_.observe(std::move(observer));
    }

 protected:
    ~ObservableObject() = default;
    void announceChange() { announcer_.announce(); }

 private:
    template <class T>
    friend class Published;

    Announcer announcer_;
};

/// One published field. The ObservableObject that owns it must outlive it.
template <class T>
class Published {
 public:
    explicit Published(ObservableObject& owner, T initial = T{})
        : owner_(owner), value_(std::move(initial)) {}
    Published(const Published&) = delete;
    Published& operator=(const Published&) = delete;

    const T& get() const { return value_; }
    const T& operator*() const { return value_; }
    const T* operator->() const { return &value_; }

    /// Announces to the field's observers, then to the object's, then writes.
    void set(T value) {
        willChange_.announce();
        owner_.announceChange();
        value_ = std::move(value);
    }

    /// Like set(), but `change` alters the value in place: for values that are expensive to copy.
    template <class Change>
    void update(Change change) {
        willChange_.announce();
        owner_.announceChange();
        change(value_);
    }

    /// Calls `observer` before each write of this field.
    [[nodiscard]] Subscription willChange(Announcer::Observer observer) {
        return willChange_.observe(std::move(observer));
    }

 private:
    ObservableObject& owner_;
    Announcer willChange_;
    T value_;
};

}  // namespace tarnwick
