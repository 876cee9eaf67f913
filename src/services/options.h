// Options: the one option file that every party of the process can share.
#pragma once
#include "tessarine/plugin.h"

class IniFile;

// No lock: the file is not guarded.
class Options : public OptionsInterface {
 public:
  Options() = default;
  Options(const Options&) = delete;
  Options& operator=(const Options&) = delete;

  void OpenOptions(const char* name) override;
  int GetOptions(IniFile** file) override;

  // No file open. Bring-up only.
  void Init();
  // Closes the open file without writing it.
  void Shutdown();

  IniFile* iniFile = nullptr;

 private:
  void CloseFile();
};
