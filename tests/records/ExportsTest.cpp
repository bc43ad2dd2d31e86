// The dynamic symbols of the built shared library, as a host's loader sees them: LinkDc under its
// plain C name, LinkDcLine and the members of the records and the point under their C++ names,
// and none of the internal routines.
#include <cstdio>
#include <cstdlib>
#include <cxxabi.h>
#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <string>

#ifndef XKLINKDC_LIBRARY_PATH
#error "XKLINKDC_LIBRARY_PATH must name the built shared library"
#endif

namespace {

// The defined symbols of the library's dynamic symbol table, as nm lists them ("name type ...").
std::set<std::string> DefinedDynamicSymbols() {
  std::set<std::string> names;
  const std::unique_ptr<FILE, int (*)(FILE*)> nm(
      popen("nm -D -P --defined-only '" XKLINKDC_LIBRARY_PATH "'", "r"), &pclose);
  char line[4096];
  while (nm != nullptr && std::fgets(line, sizeof line, nm.get()) != nullptr) {
    const std::string text(line);
    names.insert(text.substr(0, text.find_first_of(" \n")));
  }
  return names;
}

TEST(ExportsTest, PublicInterfaceIsExportedUnderTheHostsNames) {
  const std::set<std::string> symbols = DefinedDynamicSymbols();
  ASSERT_GT(symbols.size(), 40u) << "no dynamic symbol table read from " XKLINKDC_LIBRARY_PATH;
  const char* const names[] = {
      "LinkDc",
      // LinkDcLine(const _sZK&, const _sZK&, std::vector<_sLinkLine>&)
      "_Z10LinkDcLineRKN8DataType4_sZKES2_RSt6vectorINS_10_sLinkLineESaIS4_EE",
      // CXk3DPoint
      "_ZN10CXk3DPointC1Ev", "_ZN10CXk3DPointC1Efff", "_ZN10CXk3DPointC1Eddd",
      "_ZN10CXk3DPointC1ERKS_", "_ZN10CXk3DPointD1Ev", "_ZN10CXk3DPoint3SetEfff",
      "_ZN10CXk3DPoint3SetEddd", "_ZN10CXk3DPoint3GetERfS0_S0_", "_ZN10CXk3DPoint3GetERdS0_S0_",
      "_ZN10CXk3DPointaSERKS_", "_ZNK10CXk3DPointplERKS_", "_ZNK10CXk3DPointmiERKS_",
      "_ZN10CXk3DPointpLERKS_", "_ZN10CXk3DPointmIERKS_", "_ZNK10CXk3DPointmlERKd",
      "_ZN10CXk3DPointmLERKd", "_ZNK10CXk3DPointdvERKd", "_ZN10CXk3DPointdVERKd",
      "_ZN10CXk3DPointngEv", "_ZNK10CXk3DPointeqERKS_", "_ZNK10CXk3DPointneERKS_",
      "_ZNK10CXk3DPoint5Dist2ERKS_", "_ZNK10CXk3DPoint8DistanceERKS_",
      "_ZN10CXk3DPoint12IsConllinearERKS_S1_S1_", "_ZN10CXk3DPoint13Get_3P_CircleEddddddRdS0_S0_",
      "_ZN10CXk3DPoint12IsPtInCircleEddddd", "_ZN10CXk3DPoint14IsPtIn3PCircleEdddddddd",
      // The records
      "_ZN8DataType6_sZKDCC1Ev", "_ZN8DataType6_sZKDCC1ERKS0_", "_ZN8DataType6_sZKDCaSERKS0_",
      "_ZN8DataType6_sZKDCD1Ev", "_ZN8DataType4_sZKC1Ev", "_ZN8DataType4_sZKC1ERKS0_",
      "_ZN8DataType4_sZKaSERKS0_", "_ZN8DataType4_sZKD1Ev", "_ZNK8DataType4_sZK8GetBotGCEv",
      "_ZN8DataType12_sLinkRegionC1Ev", "_ZN8DataType12_sLinkRegionC1ERKS0_",
      "_ZN8DataType12_sLinkRegionaSERKS0_", "_ZN8DataType12_sLinkRegionD1Ev",
      "_ZN8DataType10_sLinkLineC1Ev", "_ZN8DataType10_sLinkLineC1ERKS0_",
      "_ZN8DataType10_sLinkLineaSERKS0_", "_ZN8DataType10_sLinkLineD1Ev",
      "_ZNK8DataType10_sLinkLine6IsSameERKS0_"};
  for (const char* name : names) {
    EXPECT_EQ(symbols.count(name), 1u) << name;
  }
  // extern "C": no C++ name for LinkDc.
  EXPECT_EQ(symbols.count("_Z6LinkDcRKN8DataType4_sZKES2_RNS_12_sLinkRegionE"), 0u);
}

TEST(ExportsTest, NothingInternalIsExported) {
  for (const std::string& name : DefinedDynamicSymbols()) {
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> demangled(
        abi::__cxa_demangle(name.c_str(), nullptr, nullptr, &status), &std::free);
    const std::string readable = status == 0 ? demangled.get() : name;
    EXPECT_EQ(readable.find("xkl::"), std::string::npos) << readable;
    EXPECT_EQ(readable.find("g_zk"), std::string::npos) << readable;
    EXPECT_NE(readable, "CompareDouble");
    EXPECT_NE(readable, "IsLineAbove");
  }
}

} // namespace
