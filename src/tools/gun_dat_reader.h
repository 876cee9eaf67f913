// GunDatReader: reads the records of a binary gun file, its size checked against its count.
#pragma once
#include <cstdint>
#include <cstdio>

struct GunData;

class GunDatReader {
 public:
  GunDatReader() = default;
  ~GunDatReader();
  GunDatReader(const GunDatReader&) = delete;
  GunDatReader& operator=(const GunDatReader&) = delete;

  // Opens the file `path` (system form) through the file manager and checks its size: 1 when it
  // holds its count of records, or is cut short behind a first record that is a gun's (its four
  // slots -1; see Whole); else
  // prints why to `err`, naming `shownName` and the sizes found and expected, and returns 0.
  int Open(const char* path, const char* shownName, std::FILE* err);
  // Reads the next whole record into *record: 1, or 0 when none is left.
  int Next(GunData* record);
  // 1 when the file holds every record its count asks for; else prints where it ends to `err`
  // (as a warning with `asWarning`) and returns 0.
  int Whole(std::FILE* err, bool asWarning = false) const;

  std::int32_t count = 0;  // the count the file begins with
  std::int32_t records = 0;  // the whole records it holds

 private:
  // The first record has the slots every gun record has; the read position stays at it.
  bool firstLooksLikeAGun();

  std::int32_t handle_ = -1;
  std::int32_t read_ = 0;
  std::uint32_t size_ = 0;
  const char* shownName_ = "";
};
