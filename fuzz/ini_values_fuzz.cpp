// Fuzz target: an INI text parsed, every key read in every typed way (into buffers of exact
// sizes), changed, counted with a format taken from the input, and written back.
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "config/ini_file.h"
#include "fuzz_kernel.h"

namespace {

using Names = std::vector<std::pair<std::string, std::string>>;

Names namesOf(IniFile& ini) {
  Names names;
  for (CursorNode* s = ini.sections.head; s; s = s->next) {
    auto* section = static_cast<IniSection*>(s->payload);
    names.emplace_back(section->name ? section->name : "", "");
    for (CursorNode* k = section->keys.head; k; k = k->next) {
      auto* key = static_cast<IniKey*>(k->payload);
      names.emplace_back(section->name ? section->name : "", key->name ? key->name : "");
    }
  }
  return names;
}

void readEveryWay(IniFile& ini, const Names& names) {
  for (const auto& [section, key] : names) {
    ini.IniGetInt(section.c_str(), key.c_str(), 7);
    ini.IniGetFloat(section.c_str(), key.c_str(), 0.5f);
    ini.IniGetBool(section.c_str(), key.c_str(), 1);
    float color[3];
    IniGetColor(color, &ini, section.c_str(), key.c_str());
    for (int size : {1, 2, 7, 64}) {
      auto out = std::make_unique<char[]>(size);
      ini.IniGetString(section.c_str(), key.c_str(), "default", out.get(), size, size % 3);
    }
  }
}

void changeSome(IniFile& ini, const Names& names, const std::string& text) {
  for (std::size_t i = 0; i < names.size() && i < 32; i++) {
    const char* section = names[i].first.c_str();
    const char* key = names[i].second.c_str();
    switch (i % 4) {
      case 0: ini.IniSetInt(section, key, static_cast<std::int32_t>(i * 977)); break;
      case 1: ini.IniSetFloat(section, key, static_cast<float>(i) / 3.0f); break;
      case 2: ini.IniSetString(section, key, text.c_str()); break;
      default: ini.IniSetBool(section, key, static_cast<std::int32_t>(i & 1)); break;
    }
  }
  ini.IniSetString("Added", "New", text.c_str());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzzKernelUp();
  fuzzWrite("F.INI", data, size);
  {
    IniFile ini(fuzzFile("F.INI").c_str(), size % 2, 0);
    Names names = namesOf(ini);
    readEveryWay(ini, names);
    // The first line, cut short, doubles as a value and as a section name format.
    std::string firstLine(reinterpret_cast<const char*>(data), std::min<std::size_t>(size, 24));
    firstLine = firstLine.substr(0, firstLine.find_first_of(std::string("\n\0", 2)));
    changeSome(ini, names, firstLine);
    ini.IniCountSections(firstLine.c_str());
    ini.IniCountSections("GunData%03d");
    ini.IniWrite(fuzzFile("OUT.INI").c_str());
  }
  fuzzCheckNoLeak();
  return 0;
}
