#pragma once

#include "jev3d/system/delegate.h"
#include "jev3d/system/dropFileEvent.h"
#include "jev3d/system/inputEvent.h"
#include "jev3d/system/transformMouseEvent.h"

namespace JEV {
namespace SYSTEM {

// A handler of events of type E: `target->method(const E*)`. invoke(e) passes `e`;
// invoke() passes the event bound at construction. Two are equal when they bind the
// same target, method and bound event, which is what unregistering compares.
template <class E>
class eventDelegate : public delegate {
 public:
  eventDelegate() = default;
  template <class O, class C, class R>
  eventDelegate(O* target, R (C::*method)(const E*), const E* bound = nullptr) {
    bind(target, method);
    setBound(1, const_cast<E*>(bound), nullptr);
  }
};

class inputEventDelegate : public eventDelegate<inputEvent> {
 public:
  using eventDelegate::eventDelegate;
};

class dropFileEventDelegate : public eventDelegate<dropFileEvent> {
 public:
  using eventDelegate::eventDelegate;
};

class transformMouseEventDelegate : public eventDelegate<transformMouseEvent> {
 public:
  using eventDelegate::eventDelegate;
};

}  // namespace SYSTEM
}  // namespace JEV
