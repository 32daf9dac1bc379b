#include <corlith/Module.h>

#include <algorithm>
#include <cstring>
#include <mutex>
#include <vector>

namespace corlith {
namespace {

struct ModuleState {
  std::mutex mutex;
  std::vector<ModuleExtension> extensions;
  bool attached = false;
};

// Created on first use, which is inside g_lifetime's constructor, so it is destroyed
// only after g_lifetime's destructor has detached the extensions.
ModuleState& State() {
  static ModuleState state;
  return state;
}

// Runs at load and unload of the shared library: the portable form of the original's
// process-attach and process-detach notifications.
struct ModuleLifetime {
  ModuleLifetime() noexcept {
    std::lock_guard lock(State().mutex);
    State().attached = true;
  }
  ~ModuleLifetime() noexcept {
    ModuleState& state = State();
    std::vector<ModuleExtension> extensions;
    {
      std::lock_guard lock(state.mutex);
      state.attached = false;
      extensions.swap(state.extensions);
    }
    for (auto it = extensions.rbegin(); it != extensions.rend(); ++it) {
      if (it->detach) it->detach();
    }
  }
};

const ModuleLifetime g_lifetime;

}  // namespace

void RegisterModuleExtension(const ModuleExtension& extension) {
  ModuleState& state = State();
  bool attachNow;
  {
    std::lock_guard lock(state.mutex);
    state.extensions.push_back(extension);
    attachNow = state.attached;
  }
  if (attachNow && extension.attach) extension.attach();
}

bool UnregisterModuleExtension(const char* name) {
  ModuleState& state = State();
  ModuleExtension found{};
  {
    std::lock_guard lock(state.mutex);
    auto it = std::find_if(state.extensions.begin(), state.extensions.end(), [&](const ModuleExtension& e) {
      return e.name && name && std::strcmp(e.name, name) == 0;
    });
    if (it == state.extensions.end()) return false;
    found = *it;
    state.extensions.erase(it);
  }
  if (found.detach) found.detach();
  return true;
}

bool IsModuleAttached() {
  std::lock_guard lock(State().mutex);
  return State().attached;
}

}  // namespace corlith
