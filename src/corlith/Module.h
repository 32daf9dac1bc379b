// Start-up and shut-down of the shared library. The core itself registers nothing;
// libraries built on it (the UI library) add an extension that is attached when the
// core is loaded, or at once when registered later, and detached, in reverse order,
// when the core is unloaded.
#pragma once

namespace corlith {

struct ModuleExtension {
  const char* name;  ///< for diagnostics
  void (*attach)();  ///< may be null
  void (*detach)();  ///< may be null
};

/// Registers an extension; its attach runs now if the module is already attached.
void RegisterModuleExtension(const ModuleExtension& extension);
/// Detaches and removes the extension with this name; false when none is registered.
bool UnregisterModuleExtension(const char* name);
/// True between the library's load and unload.
bool IsModuleAttached();

}  // namespace corlith
