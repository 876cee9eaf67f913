// GunDatReader: reads the records of a binary gun file, its size checked against its count.
#include "tools/gun_dat_reader.h"

#include "files/file_manager.h"
#include "gun/gun_data.h"
#include "tools/tool_files.h"

namespace {

constexpr std::uint32_t kCountSize = 4;

std::uint64_t sizeFor(std::int32_t count) {
  return kCountSize + std::uint64_t{sizeof(GunData)} * static_cast<std::uint64_t>(count);
}

}  // namespace

GunDatReader::~GunDatReader() {
  if (handle_ != -1) gFMG->CloseFile(handle_);
}

int GunDatReader::Open(const char* path, const char* shownName, std::FILE* err) {
  shownName_ = shownName;
  handle_ = OpenToRead(path, shownName, err);
  if (handle_ == -1) return 0;
  size_ = gFMG->GetFileSize(path);
  unsigned char bytes[kCountSize];
  if (size_ < kCountSize || gFMG->ReadFile(handle_, bytes, kCountSize) != kCountSize) {
    std::fprintf(err, "tessarine-convert: %s is no gun data file: %u bytes, where a gun data file "
                 "has at least 4\n", shownName, size_);
    return 0;
  }
  std::uint32_t value = 0;
  for (std::uint32_t i = 0; i < kCountSize; i++) value |= std::uint32_t{bytes[i]} << (8 * i);
  count = static_cast<std::int32_t>(value);
  records = static_cast<std::int32_t>((size_ - kCountSize) / sizeof(GunData));
  if (count < 0 || size_ > sizeFor(count) || (size_ < sizeFor(count) && !firstLooksLikeAGun())) {
    std::fprintf(err, "tessarine-convert: %s is no gun data file: %u bytes, where the count %d "
                 "it begins with asks for %llu (4 + 560 x %d)\n", shownName, size_, count,
                 static_cast<unsigned long long>(sizeFor(count < 0 ? 0 : count)), count);
    return 0;
  }
  return 1;
}

bool GunDatReader::firstLooksLikeAGun() {
  GunData first;
  if (records < 1 || gFMG->ReadFile(handle_, &first, sizeof first) != sizeof first) return false;
  gFMG->SeekFile(handle_, kCountSize, 0);
  return first.SlotA == -1 && first.SlotB == -1 && first.SlotC == -1 && first.SlotD == -1;
}

int GunDatReader::Next(GunData* record) {
  if (read_ >= records) return 0;
  if (gFMG->ReadFile(handle_, record, sizeof(GunData)) != static_cast<std::int32_t>(sizeof(GunData))) {
    return 0;
  }
  read_++;
  return 1;
}

int GunDatReader::Whole(std::FILE* err, bool asWarning) const {
  if (size_ == sizeFor(count)) return 1;
  std::fprintf(err, "tessarine-convert: %s%s ends inside record %d: %u bytes, where the count %d "
               "it begins with asks for %llu (4 + 560 x %d)\n", asWarning ? "warning: " : "",
               shownName_, records + 1, size_,
               count, static_cast<unsigned long long>(sizeFor(count)), count);
  return 0;
}
