// A system library opened the first time a command needs it.
//
// PROJ and GDAL bring about a hundred shared libraries with them (image codecs, network, database
// clients). Linked into the tool, they would be loaded, and their start-up code run, on every call
// of every command: 150 ms where the tool itself needs a few, and allocations of their own that a
// leak check of the tool would have to excuse. Only the GIS outputs use them, so they are opened
// there, by the name the library was built against, and their C functions are looked up by name
// with the types of their headers.
#pragma once

#include <cstring>
#include <string>

namespace xklink {

class SharedLibrary {
public:
  // std::runtime_error naming the library and `purpose` ("GeoPackage output") when it cannot be
  // opened. The library stays loaded for the life of the process.
  SharedLibrary(const std::string& soname, const std::string& purpose);

  // The function `name`, typed as `F` (use decltype(&name) from the library's header);
  // std::runtime_error when the library lacks it.
  template <typename F> F Function(const char* name) const {
    static_assert(sizeof(F) == sizeof(void*));
    void* address = Lookup(name);
    F function = nullptr;
    std::memcpy(&function, &address, sizeof function);
    return function;
  }

private:
  void* Lookup(const char* name) const;

  std::string m_soname;
  std::string m_purpose;
  void* m_handle = nullptr;
};

} // namespace xklink
