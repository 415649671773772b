// SPDX-License-Identifier: MIT
#include "ui/panel/motion.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tarnwick {

void Motion::setReduced(bool isReduced) {
    isReduced_ = isReduced;
    if (isReduced) {
        tick();
    }
}

void Motion::add(MovingValue* value) {
    if (std::find(moving_.begin(), moving_.end(), value) == moving_.end()) {
        moving_.push_back(value);
    }
    if (timer_ == nullptr) {
        timer_ = dispatch_.scheduleRepeating(kFrame, [this] { tick(); });
    }
}

void Motion::remove(MovingValue* value) {
    std::erase(moving_, value);
    if (moving_.empty()) {
        timer_.reset();
    }
}

void Motion::tick() {
    // A copy: the functions that a frame calls may add and remove values.
    const std::vector<MovingValue*> values = moving_;
    for (MovingValue* value : values) {
        const bool isThere = std::find(moving_.begin(), moving_.end(), value) != moving_.end();
        if (isThere && !value->show(now())) {
            remove(value);
        }
    }
}

MovingValue::MovingValue(std::shared_ptr<Motion> motion, std::function<void()> changed,
                         double duration)
    : motion_(std::move(motion)), changed_(std::move(changed)), duration_(duration) {}

MovingValue::~MovingValue() {
    if (motion_ != nullptr) {
        motion_->remove(this);
    }
}

void MovingValue::jumpTo(double target) {
    shown_ = target_ = target;
    if (motion_ != nullptr) {
        motion_->remove(this);
    }
}

void MovingValue::moveTo(double target, double closeness) {
    if (target == target_) {
        return;
    }
    if (motion_ == nullptr || motion_->isReduced()) {
        jumpTo(target);
        changed_();
        return;
    }
    origin_ = shown_;
    target_ = target;
    closeness_ = closeness;
    start_ = motion_->now();
    motion_->add(this);
}

bool MovingValue::show(double now) {
    const double share = motion_->isReduced() ? 1 : (now - start_) / duration_;
    // Fast at first, slow at the end.
    const double rest = (origin_ - target_) * (1 - share) * (1 - share);
    const bool isUnderWay = share < 1 && std::abs(rest) >= closeness_;
    const double next = isUnderWay ? target_ + rest : target_;
    if (next != shown_) {
        shown_ = next;
        changed_();
    }
    return isUnderWay;
}

}  // namespace tarnwick
