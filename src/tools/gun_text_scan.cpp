// GunTextScan: reads a gun text file the way the load does, keeping the line of every section and
// key and noting what the load would pass over.
#include "tools/gun_text_scan.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <deque>

#include "files/file_manager.h"
#include "tools/tool_files.h"

namespace {

constexpr long kArenaBytes = kGunTextLimit + 1;

bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

char lowerByte(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

// A name without the ".\" the system puts ahead of a bare name, so that both spellings compare.
std::string withoutDot(std::string_view name) {
  return std::string(name.compare(0, 2, ".\\") == 0 ? name.substr(2) : name);
}

std::string quoted(const std::string& text) { return "\"" + text + "\""; }

// The whole file through the file manager, as the load reads it, straight into `bytes`; false
// if it can't be opened.
bool readWhole(const char* name, std::string* bytes) {
  std::int32_t handle = gFMG->OpenFile(name);
  if (handle == -1) return false;
  std::size_t used = 0;
  for (std::int32_t got = 1; got > 0; used += static_cast<std::size_t>(got)) {
    if (used == bytes->size()) bytes->resize(std::max<std::size_t>(2 * used, 65536));
    auto room = static_cast<std::uint32_t>(std::min<std::size_t>(bytes->size() - used, 1u << 30));
    got = std::max<std::int32_t>(gFMG->ReadFile(handle, bytes->data() + used, room), 0);
  }
  bytes->resize(used);
  gFMG->CloseFile(handle);
  return true;
}

// One line of the text as the load sees it, with the line number a text editor shows.
struct Line {
  std::string_view text;
  int number;
};

// Cuts the first `length` bytes of `bytes` as the load does: every CR and LF ends a line up to
// the first zero byte, which ends one too, and behind it only zero bytes do. Numbers count a
// CR LF pair as one line end. Lines point into `bytes`.
class LineCutter {
 public:
  LineCutter(std::string_view bytes, std::size_t length) : bytes_(bytes), length_(length) {}

  // The next line into *line; false when every line has been given.
  bool Next(Line* line) {
    if (done_) return false;
    std::size_t i = start_;
    char c = '\0';
    // Eight bytes at a time while none of them is a line end or a zero byte (none below 14).
    constexpr std::uint64_t kOnes = 0x0101010101010101u;
    for (std::uint64_t word; i + 8 <= length_; i += 8) {
      std::memcpy(&word, bytes_.data() + i, 8);
      if (((word - 14 * kOnes) & ~word & 0x80 * kOnes) != 0) break;
    }
    for (; i < length_; i++) {
      c = bytes_[i];
      if (static_cast<unsigned char>(c) > '\r') continue;
      if (c == '\0' || (!zeroSeen_ && (c == '\r' || c == '\n'))) break;
    }
    if (i == length_) {
      c = '\0';
      done_ = true;
    }
    *line = {bytes_.substr(start_, i - start_), number_};
    start_ = i + 1;
    if (c == '\0') zeroSeen_ = true;
    if (c == '\n' || (c == '\r' && !(i + 1 < length_ && bytes_[i + 1] == '\n'))) number_++;
    return true;
  }

 private:
  std::string_view bytes_;
  std::size_t length_;
  std::size_t start_ = 0;
  int number_ = 1;
  bool zeroSeen_ = false;
  bool done_ = false;
};

// The line number of byte `offset`.
int lineAt(const std::string& bytes, std::size_t offset) {
  int number = 1;
  for (std::size_t i = 0; i < offset && i < bytes.size(); i++) {
    if (bytes[i] == '\n' || (bytes[i] == '\r' && (i + 1 >= bytes.size() || bytes[i + 1] != '\n'))) {
      number++;
    }
  }
  return number;
}

struct Include {
  std::string name;
  std::size_t fromFile;
  int fromLine;
  int parent;  // index into the chain of files read, -1 for the first file
  bool inCycle;
};

struct ReadFile {
  std::string name;
  int parent;
};

class Scanner {
 public:
  explicit Scanner(GunTextScan* scan) : scan_(scan) {}

  // Reads the file and, in the load's order, every include behind it.
  bool Run(const char* path, const char* shownName) {
    bool opened = ReadOne({path, 0, 0, -1, false}, shownName);
    while (!pending_.empty()) {
      Include include = pending_.front();
      pending_.pop_front();
      ReadOne(include, ShownPath(include.name.c_str()).c_str());
    }
    return opened;
  }

 private:
  std::size_t FileIndex(const std::string& shown) {
    auto found = std::find(scan_->files.begin(), scan_->files.end(), shown);
    if (found != scan_->files.end()) return static_cast<std::size_t>(found - scan_->files.begin());
    scan_->files.push_back(shown);
    return scan_->files.size() - 1;
  }

  bool ReadOne(const Include& include, const char* shown) {
    std::string bytes;
    if (!readWhole(include.name.c_str(), &bytes)) {
      if (include.parent >= 0) {
        scan_->Add(include.fromFile, include.fromLine, FindingKind::kLoss,
                   "#include " + quoted(include.name) + ": the file can't be read, so nothing of "
                   "it is loaded");
      }
      return false;
    }
    long room = kArenaBytes - used_;
    std::size_t file = FileIndex(shown);
    // A file read again in a cycle brings nothing new: its loss is no loss.
    if (room <= 0 && !bytes.empty()) {
      if (!include.inCycle) {
        scan_->Add(include.fromFile, include.fromLine, FindingKind::kLoss,
                   "#include " + quoted(include.name) + " is not read: the " +
                       std::to_string(kGunTextLimit) + "-byte text limit is full");
      }
      return true;
    }
    long count = std::min<long>(static_cast<long>(bytes.size()), room);
    if (count == 0) return true;
    used_ = std::min(kArenaBytes, used_ + count + 1);
    // A read that fills the arena gives up its last byte to the terminator.
    std::size_t length = static_cast<std::size_t>(count == room ? count - 1 : count);
    int self = static_cast<int>(chain_.size());
    chain_.push_back({withoutDot(include.name), include.parent});
    if (length < bytes.size() && !include.inCycle) NoteCut(file, bytes, length);
    if (bytes[0] == '\r' || bytes[0] == '\n' || bytes[0] == '\0') {
      scan_->Add(file, 1, FindingKind::kLoss,
                 "the file begins with a line end or a zero byte, so the load reads nothing of "
                 "it");
      return true;
    }
    // The keys point into the bytes, which the scan keeps from here on.
    const std::string& kept = scan_->texts.emplace_back(std::move(bytes));
    std::vector<Include> includes;
    ReadLines(file, LineCutter(kept, length), self, include.inCycle, &includes);
    pending_.insert(pending_.begin(), includes.begin(), includes.end());
    return true;
  }

  void NoteCut(std::size_t file, const std::string& bytes, std::size_t length) {
    int line = lineAt(bytes, length);
    std::string cutSection;
    std::vector<std::string> lost;
    LineCutter lines(bytes, bytes.size());
    for (Line each; lines.Next(&each);) {
      if (each.text.empty() || each.text[0] != '[') continue;
      if (each.number < line) cutSection = each.text;
      else lost.emplace_back(each.text);
    }
    std::string text = "the load stops here, at the " + std::to_string(kGunTextLimit) +
                       "-byte text limit (the file has " + std::to_string(bytes.size()) +
                       " bytes)";
    if (!cutSection.empty()) text += ": " + cutSection + " loses its keys from this line on";
    if (!lost.empty()) {
      text += std::string(cutSection.empty() ? ":" : ",") + " " + std::to_string(lost.size()) +
              " section(s) behind it are lost (" + lost.front() +
              (lost.size() > 1 ? " to " + lost.back() : "") + ")";
    }
    scan_->Add(file, line, FindingKind::kLoss, text);
  }

  void ReadLines(std::size_t file, LineCutter lines, int self, bool inCycle,
                 std::vector<Include>* includes) {
    ScanSection* section = nullptr;  // the section whose key list is being read
    bool skipping = false;           // in the key lines of a dropped duplicate section
    int enderLine = 0;               // the last # line that ended a key list
    for (Line line; lines.Next(&line);) {
      std::string_view text = line.text;
      char first = text.empty() ? '\0' : text[0];
      if (first == '[') {
        section = Header(file, line, &skipping);
      } else if (first == '#') {
        section = nullptr;
        skipping = false;
        enderLine = line.number;
        Directive(file, line, self, inCycle, includes);
      } else if (first == '\0' || first == ';' || skipping) {
        continue;
      } else if (section) {
        Key(section, line);
      } else if (text.find('=') != std::string_view::npos) {
        scan_->Add(file, line.number, FindingKind::kChange,
                   "key line outside any section's key list is ignored" +
                       (enderLine ? " (the # line at line " + std::to_string(enderLine) +
                                        " ended the key list)"
                                  : std::string()));
      }
    }
  }

  ScanSection* Header(std::size_t file, const Line& line, bool* skipping) {
    std::string name(line.text.substr(1));
    if (!name.empty() && name.back() == ']') name.pop_back();
    *skipping = false;
    std::size_t index = scan_->sections.size();
    if (!name.empty()) {
      auto [entry, added] = scan_->sectionIndex.try_emplace(LowerName(name), index);
      if (!added) {
        const ScanSection& earlier = scan_->sections[entry->second];
        *skipping = true;
        // The same line read again, in a cycle of includes, repeats nothing the user wrote twice.
        if (earlier.file == file && earlier.line == line.number) return nullptr;
        scan_->Add(file, line.number, FindingKind::kChange,
                   "section [" + name + "] repeats the one at " + scan_->files[earlier.file] +
                       ":" + std::to_string(earlier.line) + ", which counts; this one and its "
                       "keys are ignored");
        return nullptr;
      }
    }
    scan_->sections.push_back({std::move(name), file, line.number, {}, 0});
    return &scan_->sections.back();
  }

  void Key(ScanSection* section, const Line& line) {
    std::size_t equals = line.text.find('=');
    if (equals == std::string_view::npos) {
      scan_->Add(section->file, line.number, FindingKind::kChange,
                 "line without \"=\" in section [" + section->name + "] is ignored");
      return;
    }
    std::string_view name = TrimBlanks(line.text.substr(0, equals));
    ScanKey key{name, TrimBlanks(line.text.substr(equals + 1)), line.number, NameHash(name)};
    std::uint64_t hashBit = std::uint64_t{1} << (key.nameHash % 64);
    bool seenBefore = (section->keyHashBits & hashBit) != 0;
    section->keyHashBits |= hashBit;
    for (std::size_t i = 0; seenBefore && i < section->keys.size(); i++) {
      const ScanKey& earlier = section->keys[i];
      if (earlier.nameHash != key.nameHash || !SameName(key.name, earlier.name)) continue;
      scan_->Add(section->file, line.number, FindingKind::kChange,
                 "key " + std::string(key.name) + " repeats the one at line " +
                     std::to_string(earlier.line) + ", which counts; this one is ignored");
      return;
    }
    section->keys.push_back(key);
  }

  void Directive(std::size_t file, const Line& line, int self, bool inCycle,
                 std::vector<Include>* includes) {
    std::string word(line.text.substr(1));
    std::size_t blank = word.find(' ');
    if (blank == std::string::npos) {
      if (word.size() >= 7 && SameName(std::string_view(word).substr(0, 7), "include")) {
        scan_->Add(file, line.number, FindingKind::kChange,
                   "#include line without a blank behind the word is ignored");
      }
      return;
    }
    if (!SameName(std::string_view(word).substr(0, blank), "include")) return;
    std::string name = word.substr(blank + 1);
    if (!name.empty() && name[0] == '"') {
      name = name.substr(1, name.find('"', 1) == std::string::npos ? std::string::npos
                                                                     : name.find('"', 1) - 1);
    } else {
      name = name.substr(0, name.find(' '));
    }
    bool cycle = inCycle;
    if (!inCycle) {
      std::string path;
      for (int at = self; at >= 0 && !cycle; at = chain_[static_cast<std::size_t>(at)].parent) {
        path = chain_[static_cast<std::size_t>(at)].name + (path.empty() ? "" : " -> ") + path;
        cycle = chain_[static_cast<std::size_t>(at)].name == withoutDot(name);
      }
      if (cycle) {
        scan_->Add(file, line.number, FindingKind::kChange,
                   "#include " + quoted(name) + " forms a cycle (" + path + " -> " + name +
                       "): the load reads the files again and again until the text limit is "
                       "full");
      }
    }
    includes->push_back({name, file, line.number, self, cycle});
  }

  GunTextScan* scan_;
  std::deque<Include> pending_;
  std::vector<ReadFile> chain_;
  long used_ = 0;
};

}  // namespace

std::string_view TrimBlanks(std::string_view text) {
  std::size_t begin = 0;
  std::size_t end = text.size();
  while (begin < end && isBlank(text[begin])) begin++;
  while (end > begin && isBlank(text[end - 1])) end--;
  return text.substr(begin, end - begin);
}

bool SameName(std::string_view a, std::string_view b) {
  if (a.empty() || a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); i++) {
    if (a[i] != b[i] && lowerByte(a[i]) != lowerByte(b[i])) return false;
  }
  return true;
}

std::uint32_t NameHash(std::string_view name) {
  // FNV-1a of the bytes with bit 5 set: a letter's two cases give the same hash, and names that
  // differ elsewhere only in that bit share one, which SameName then tells apart.
  std::uint32_t hash = 2166136261u;
  for (char c : name) hash = (hash ^ (static_cast<unsigned char>(c) | 0x20u)) * 16777619u;
  return hash;
}

std::string LowerName(std::string_view name) {
  std::string lower(name);
  for (char& c : lower) c = lowerByte(c);
  return lower;
}

long GunTextScan::FindSection(std::string_view name) const {
  auto found = sectionIndex.find(LowerName(name));
  return found == sectionIndex.end() ? -1 : static_cast<long>(found->second);
}

void GunTextScan::Add(std::size_t file, int line, FindingKind kind, std::string text) {
  for (const Finding& finding : findings) {
    if (finding.file == file && finding.line == line && finding.text == text) return;
  }
  findings.push_back({file, line, kind, std::move(text)});
}

bool ScanGunText(const char* path, const char* shownName, GunTextScan* scan) {
  return Scanner(scan).Run(path, shownName);
}
