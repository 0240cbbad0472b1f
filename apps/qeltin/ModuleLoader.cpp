#include "apps/qeltin/ModuleLoader.h"

#include <dlfcn.h>

#include <filesystem>

#include "apps/qeltin/Failure.h"

namespace qeltin::cli {

void* LoadModule(std::string const& file, char const* entry) {
  namespace fs = std::filesystem;
  std::string const module =
      (fs::read_symlink("/proc/self/exe").parent_path() / QELTIN_MODULE_FROM_BIN / file)
          .lexically_normal()
          .string();
  void* const handle = dlopen(module.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) throw Failure(module, dlerror());
  void* const found = dlsym(handle, entry);
  if (found == nullptr) throw Failure(module, dlerror());
  return found;
}

}  // namespace qeltin::cli
