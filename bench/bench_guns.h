// Benchmark support: a gun data text file of many guns with every key filled.
#pragma once
#include <cstdio>
#include <fstream>
#include <string>

// The path in the system's backslash form.
inline std::string systemPath(std::string path) {
  for (char& c : path) {
    if (c == '/') c = '\\';
  }
  return path;
}

// Writes `directory`/bench-guns.ini with `guns` guns; returns its host path.
inline std::string writeBenchGuns(const std::string& directory, int guns) {
  std::string path = directory + "/bench-guns.ini";
  std::ofstream out(path, std::ios::binary);
  for (int i = 1; i <= guns; i++) {
    char section[1024];
    std::snprintf(section, sizeof section,
                  "[GunData%03d]\nTypeName=Gun %d\nFullName=Benchmark gun %d\nCaliber=20\n"
                  "ROF=%d\nMuzzleVel=800\nAmmoWt=0.25\nWarheadWt=0.1\nReliability=0.9\n"
                  "Accuracy=0.75\nAddLight=TRUE\nMaxLightRange=30\nFireColor=1,0.5,0.25\n"
                  "GunFireEffect=fx_muzzle\nGunFireSound=snd_gun\nEffectClassName=GunEffect\n"
                  "EffectTime=0.2\nTracerTexture=tracer_red\nTracerSize=0.3\n"
                  "TracerDistFactor=1.5\nTracerLength=4\nMaxVisibleDist=1000\n"
                  "MaxStreakVisibleDist=500\n\n",
                  i, i, i, 300 + i);
    out << section;
  }
  return path;
}
