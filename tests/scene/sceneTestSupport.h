#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "jev3d/renderer/renderingContext.h"
#include "jev3d/scene/node.h"
#include "jev3d/scene/sgController.h"
#include "jev3d/system/delegate.h"
#include "jev3d/system/updateContext.h"
#include "system/windowTestSupport.h"

// Writes "<name>.update" or "<name>.render" to a shared log when a node's delegate runs,
// and keeps the contexts it was given. `also` runs after the entry is written, so a test
// can edit the tree from inside a walk.
class walkProbe {
 public:
  walkProbe(std::vector<std::string>& log, std::string name) : log(log), name(std::move(name)) {}

  void onUpdate(JEV::RENDERING::renderingContext* rc, JEV::SYSTEM::updateContext* uc) {
    log.push_back(name + ".update");
    lastRc = rc;
    lastUc = uc;
    if (also) also();
  }
  void onRender(JEV::RENDERING::renderingContext* rc) {
    log.push_back(name + ".render");
    lastRc = rc;
    if (also) also();
  }
  // Makes this probe the node's two delegates.
  void attach(JEV::SG::node& n) {
    n.updateDelegate = JEV::SYSTEM::makeDelegate(this, &walkProbe::onUpdate);
    n.renderDelegate = JEV::SYSTEM::makeDelegate(this, &walkProbe::onRender);
  }

  std::vector<std::string>& log;
  std::string name;
  std::function<void()> also;
  JEV::RENDERING::renderingContext* lastRc = nullptr;
  JEV::SYSTEM::updateContext* lastUc = nullptr;
};

// A controller on a window of the scripted platform, with a log for the probes.
class sceneWindowTest : public scriptedPlatformTest {
 protected:
  // Before the controller, whose nodes may write to them as it goes.
  std::vector<std::string> log;
  std::vector<std::string> destroyed;
  JEV::SYSTEM::application app{L"", L""};
  probeWindow win{&app, &device};
  JEV::SG::sgController scene{&win};
};
