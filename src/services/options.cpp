// Options: the one option file that every party of the process can share.
#include "services/options.h"

#include "config/ini_file.h"

void Options::CloseFile() {
  delete iniFile;
  iniFile = nullptr;
}

void Options::OpenOptions(const char* name) {
  CloseFile();
  iniFile = new IniFile(name, 1, 0);
}

int Options::GetOptions(IniFile** file) {
  if (!iniFile) return 0;
  *file = iniFile;
  return 1;
}

void Options::Init() { iniFile = nullptr; }

void Options::Shutdown() { CloseFile(); }
