// The dynamic symbols of the built shared library as a host sees them: LinkDc under its plain C
// name, LinkDcLine and the members of the records and the point under their C++ names, and none
// of the internal routines.
#include <cstdlib>
#include <cstring>
#include <cxxabi.h>
#include <dlfcn.h>
#include <elf.h>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#ifndef XKLINKDC_LIBRARY_PATH
#error "XKLINKDC_LIBRARY_PATH must name the built shared library"
#endif

namespace {

class ExportsTest : public testing::Test {
protected:
  static void SetUpTestSuite() { handle_ = dlopen(XKLINKDC_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL); }
  static void TearDownTestSuite() {
    if (handle_ != nullptr) {
      dlclose(handle_);
    }
  }
  void SetUp() override { ASSERT_NE(handle_, nullptr) << dlerror(); }

  static void* handle_;
};
void* ExportsTest::handle_ = nullptr;

TEST_F(ExportsTest, LinkDcHasItsPlainCName) {
  EXPECT_NE(dlsym(handle_, "LinkDc"), nullptr);
  EXPECT_EQ(dlsym(handle_, "_Z6LinkDcRKN8DataType4_sZKES2_RNS_12_sLinkRegionE"), nullptr);
}

TEST_F(ExportsTest, PublicInterfaceIsExportedUnderItsCxxNames) {
  const char* const names[] = {
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
    SCOPED_TRACE(name);
    EXPECT_NE(dlsym(handle_, name), nullptr);
  }
}

TEST_F(ExportsTest, InternalRoutinesAreNotExported) {
  const char* const names[] = {
      "_ZN3xkl13CompareDoubleEdd",
      "_ZN3xkl10LinkRegionERKN8XKLinkDc16CorrelationStateERN8DataType12_sLinkRegionEb",
      "_ZN3xkl11IsLineAboveERKN8DataType10_sLinkLineES3_",
      "_ZN3xkl14MergeSameLinesERSt6vectorIN8DataType10_sLinkLineESaIS2_EE",
      "_ZN3xkl13GetBoundaryGCERKN8DataType4_sZKEi",
      "_ZN3xkl7g_stateE",
      "CompareDouble",
      "IsLineAbove"};
  for (const char* name : names) {
    SCOPED_TRACE(name);
    EXPECT_EQ(dlsym(handle_, name), nullptr);
  }
}

// Reads the defined symbols of the library's dynamic symbol table from the file itself.
std::vector<std::string> DefinedDynamicSymbols(const char* path) {
  std::ifstream in(path, std::ios::binary);
  const std::vector<char> image{std::istreambuf_iterator<char>(in),
                                std::istreambuf_iterator<char>()};
  std::vector<std::string> names;
  if (image.size() < sizeof(Elf64_Ehdr) || image[EI_CLASS] != ELFCLASS64) {
    return names;
  }
  Elf64_Ehdr eh;
  std::memcpy(&eh, image.data(), sizeof eh);
  const auto section = [&](std::size_t i) {
    Elf64_Shdr sh;
    std::memcpy(&sh, image.data() + eh.e_shoff + i * eh.e_shentsize, sizeof sh);
    return sh;
  };
  for (std::size_t i = 0; i < eh.e_shnum; ++i) {
    const Elf64_Shdr sh = section(i);
    if (sh.sh_type != SHT_DYNSYM) {
      continue;
    }
    const Elf64_Shdr strtab = section(sh.sh_link);
    for (std::size_t off = 0; off + sizeof(Elf64_Sym) <= sh.sh_size; off += sizeof(Elf64_Sym)) {
      Elf64_Sym sym;
      std::memcpy(&sym, image.data() + sh.sh_offset + off, sizeof sym);
      if (sym.st_shndx != SHN_UNDEF && sym.st_name != 0) {
        names.emplace_back(image.data() + strtab.sh_offset + sym.st_name);
      }
    }
  }
  return names;
}

TEST_F(ExportsTest, NoDynamicSymbolBelongsToTheInternalNamespace) {
  const std::vector<std::string> names = DefinedDynamicSymbols(XKLINKDC_LIBRARY_PATH);
  ASSERT_GT(names.size(), 40u); // the scan found the table: the public interface alone is larger
  bool sawLinkDc = false;
  for (const std::string& name : names) {
    sawLinkDc = sawLinkDc || name == "LinkDc";
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> demangled(
        abi::__cxa_demangle(name.c_str(), nullptr, nullptr, &status), &std::free);
    const std::string readable = status == 0 ? demangled.get() : name;
    EXPECT_EQ(readable.find("xkl::"), std::string::npos) << readable;
    EXPECT_EQ(readable.find("g_zk"), std::string::npos) << readable;
  }
  EXPECT_TRUE(sawLinkDc);
}

} // namespace
