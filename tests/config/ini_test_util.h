// Test support for IniFile: a kernel and a working directory of its own, and a text picture of
// what an IniFile holds.
#pragma once
#include <filesystem>
#include <string>

#include "config/ini_file.h"
#include "kernel_fixture.h"

// The kernel is up and the process works in a fresh temporary directory, so bare names and
// include names reach files the test wrote.
class IniTest : public KernelTest {
 protected:
  void SetUp() override {
    KernelTest::SetUp();
    previous_ = std::filesystem::current_path();
    std::filesystem::current_path(dir_.path());
  }
  void TearDown() override {
    std::filesystem::current_path(previous_);
    KernelTest::TearDown();
  }
  void Write(const std::string& name, const std::string& bytes) {
    writeWholeFile(dir_.file(name), bytes);
  }
  std::string Read(const std::string& name) { return readWholeFile(dir_.file(name)); }

  TempDir dir_;

 private:
  std::filesystem::path previous_;
};

// "[name]k=v,k2=(null);[name2]..." in list order: the raw structure, without moving a cursor.
inline std::string iniPicture(const IniFile& ini) {
  std::string out;
  for (CursorNode* s = ini.sections.head; s; s = s->next) {
    auto* section = static_cast<IniSection*>(s->payload);
    out += "[" + std::string(section->name) + "]";
    for (CursorNode* k = section->keys.head; k; k = k->next) {
      auto* key = static_cast<IniKey*>(k->payload);
      if (k != section->keys.head) out += ",";
      out += std::string(key->name) + "=" + (key->stringValue ? key->stringValue : "(null)");
    }
    out += ";";
  }
  return out;
}

// The key as it stands, without moving a cursor; null if absent. Names compare exactly.
inline IniKey* iniPeek(const IniFile& ini, const std::string& section, const std::string& key) {
  for (CursorNode* s = ini.sections.head; s; s = s->next) {
    auto* found = static_cast<IniSection*>(s->payload);
    if (section != found->name) continue;
    for (CursorNode* k = found->keys.head; k; k = k->next) {
      auto* candidate = static_cast<IniKey*>(k->payload);
      if (key == candidate->name) return candidate;
    }
  }
  return nullptr;
}

// Bytes of the arena in use.
inline long iniUsed(const IniFile& ini) { return static_cast<long>(ini.pool.top - ini.pool.base); }
