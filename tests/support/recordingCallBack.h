#pragma once

#include <vector>

#include "jev3d/system/callBack.h"

// A progress reporter that keeps every percentage it is given, in order.
class recordingCallBack : public JEV::SYSTEM::callBack {
 public:
  bool setValue(float percent) override {
    values.push_back(percent);
    return callBack::setValue(percent);
  }
  std::vector<float> values;
};
