#include "SharedLibrary.h"

#include <dlfcn.h>
#include <stdexcept>

namespace xklink {

SharedLibrary::SharedLibrary(const std::string& soname, const std::string& purpose)
    : m_soname(soname), m_purpose(purpose) {
  m_handle = dlopen(soname.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (m_handle == nullptr) {
    const char* why = dlerror();
    throw std::runtime_error(purpose + " needs " + soname + ", which cannot be loaded (" +
                             (why != nullptr ? why : "unknown reason") +
                             "); scripts/setup installs it");
  }
}

void* SharedLibrary::Lookup(const char* name) const {
  dlerror();
  void* address = dlsym(m_handle, name);
  if (address == nullptr) {
    throw std::runtime_error(m_purpose + ": " + m_soname + " has no function " + name);
  }
  return address;
}

} // namespace xklink
