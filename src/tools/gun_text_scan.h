// GunTextScan: reads a gun text file the way the load does, keeping the line of every section and
// key and noting what the load would pass over.
#pragma once
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// What a finding means for a conversion: guns or their data lost, or a value changed or dropped.
enum class FindingKind { kLoss, kChange };

// One line of a report: "file:line: text" (just "file: text" for line 0).
struct Finding {
  std::size_t file;  // index into GunTextScan::files
  int line;
  FindingKind kind;
  std::string text;
};

// A key's texts point into GunTextScan::texts, so they live as long as the scan.
struct ScanKey {
  std::string_view name;   // trimmed
  std::string_view value;  // trimmed
  int line;
  std::uint32_t nameHash;  // of the name in lower case, so that repeats are found by number
};

struct ScanSection {
  std::string name;
  std::size_t file;
  int line;
  std::vector<ScanKey> keys;  // the keys the load keeps, in file order
  std::uint64_t keyHashBits = 0;  // bit (hash % 64) set for each key's name hash
};

struct GunTextScan {
  std::vector<std::string> files;     // names as shown to the user, in order of first reading
  std::vector<ScanSection> sections;  // the sections the load keeps, in its order
  std::vector<Finding> findings;      // in the order found, each text once
  std::deque<std::string> texts;      // the bytes of every file read, where the keys point
  // Each section's name in lower case (names compare without case), to its index in `sections`.
  std::unordered_map<std::string, std::size_t> sectionIndex;

  // The index in `sections` of the section named `name` (any case), or -1.
  long FindSection(std::string_view name) const;

  // Files a finding unless the same one is there already.
  void Add(std::size_t file, int line, FindingKind kind, std::string text);
};

// `text` without the blanks (space, tab, line ends, vertical tab, form feed) at its ends, as the
// load trims names and values.
std::string_view TrimBlanks(std::string_view text);

// True when the names are equal without case, as the load compares them (only A-Z fold); an
// empty name equals nothing.
bool SameName(std::string_view a, std::string_view b);

// A hash of the name in lower case: equal for names that SameName finds equal.
std::uint32_t NameHash(std::string_view name);

// `name` in lower case, as names compare (only A-Z fold).
std::string LowerName(std::string_view name);

// The load's text limit: the bytes of a file and all its includes share one arena of this size
// plus a terminator.
constexpr long kGunTextLimit = 262144;

// Reads the file `path` (system form, as the load opens it) and its #include files into `scan`,
// with the load's rules: the shared text limit, the first of a section or key name winning,
// #include files behind the including file, depth first, a cycle read again until the limit is
// full. `shownName` names the file in findings. Returns false if the file can't be opened.
bool ScanGunText(const char* path, const char* shownName, GunTextScan* scan);
