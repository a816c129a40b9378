#pragma once

#include "frame/Switch.h"

// A switch that answers nothing and drops every event, for a module run in-process where
// nobody looks at what it sends.
class QuietSwitch : public ISwitch {
  public:
    int SendRequest(CIExtensionModule*, CommandRecord*, uint32_t) override { return 0; }
    int SendEvent(CIExtensionModule*, CommandRecord*) override { return 0; }
    uint32_t GetSwitchType() override { return 1; }
};
