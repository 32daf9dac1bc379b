// Start-up and shut-down of the shared library, observed from a host that loads and
// unloads it at run time.
#include <corlith/Module.h>

#include <dlfcn.h>
#include <gtest/gtest.h>

namespace {

using IsAttachedFn = bool (*)();
using RegisterFn = void (*)(const corlith::ModuleExtension&);
using UnregisterFn = bool (*)(const char*);

int g_attached = 0;
int g_detached = 0;
std::vector<std::string> g_order;

class LoadedLibrary {
 public:
  LoadedLibrary() : m_handle(dlopen(CORLITH_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL)) {}
  ~LoadedLibrary() { Close(); }
  void Close() {
    if (m_handle) dlclose(m_handle);
    m_handle = nullptr;
  }
  bool IsOpen() const { return m_handle != nullptr; }
  template <typename Fn>
  Fn Symbol(const char* mangled) const {
    return reinterpret_cast<Fn>(dlsym(m_handle, mangled));
  }

 private:
  void* m_handle;
};

// Itanium C++ ABI names of the registration functions.
constexpr const char* kIsAttached = "_ZN7corlith16IsModuleAttachedEv";
constexpr const char* kRegister = "_ZN7corlith23RegisterModuleExtensionERKNS_15ModuleExtensionE";
constexpr const char* kUnregister = "_ZN7corlith25UnregisterModuleExtensionEPKc";

TEST(Module, IsAttachedOnceLoaded) {
  LoadedLibrary library;
  ASSERT_TRUE(library.IsOpen()) << dlerror();
  auto isAttached = library.Symbol<IsAttachedFn>(kIsAttached);
  ASSERT_NE(isAttached, nullptr);
  EXPECT_TRUE(isAttached());
}

TEST(Module, ExtensionRegisteredAfterLoadAttachesAtOnceAndDetachesAtUnload) {
  g_attached = g_detached = 0;
  g_order.clear();
  LoadedLibrary library;
  ASSERT_TRUE(library.IsOpen()) << dlerror();
  auto registerExtension = library.Symbol<RegisterFn>(kRegister);
  ASSERT_NE(registerExtension, nullptr);

  registerExtension({"first", [] { ++g_attached; }, [] { g_order.push_back("first"); }});
  registerExtension({"second", [] { ++g_attached; }, [] { g_order.push_back("second"); }});
  EXPECT_EQ(g_attached, 2);
  EXPECT_TRUE(g_order.empty());

  library.Close();
  // Detached in reverse order of registration, as the library goes away.
  EXPECT_EQ(g_order, (std::vector<std::string>{"second", "first"}));
}

TEST(Module, UnregisterDetachesOnlyTheNamedExtension) {
  g_detached = 0;
  LoadedLibrary library;
  ASSERT_TRUE(library.IsOpen()) << dlerror();
  auto registerExtension = library.Symbol<RegisterFn>(kRegister);
  auto unregisterExtension = library.Symbol<UnregisterFn>(kUnregister);
  ASSERT_NE(unregisterExtension, nullptr);

  registerExtension({"ui", nullptr, [] { ++g_detached; }});
  EXPECT_FALSE(unregisterExtension("absent"));
  EXPECT_EQ(g_detached, 0);
  EXPECT_TRUE(unregisterExtension("ui"));
  EXPECT_EQ(g_detached, 1);
  library.Close();
  EXPECT_EQ(g_detached, 1);  // not detached twice
}

}  // namespace
