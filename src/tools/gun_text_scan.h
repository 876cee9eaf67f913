// GunTextScan: reads a gun text file the way the load does, keeping the line of every section and
// key and noting what the load would pass over.
#pragma once
#include <cstddef>
#include <string>
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

struct ScanKey {
  std::string name;   // trimmed
  std::string value;  // trimmed
  int line;
};

struct ScanSection {
  std::string name;
  std::size_t file;
  int line;
  std::vector<ScanKey> keys;  // the keys the load keeps, in file order
};

struct GunTextScan {
  std::vector<std::string> files;     // names as shown to the user, in order of first reading
  std::vector<ScanSection> sections;  // the sections the load keeps, in its order
  std::vector<Finding> findings;      // in the order found, each text once

  // Files a finding unless the same one is there already.
  void Add(std::size_t file, int line, FindingKind kind, std::string text);
};

// `text` without the blanks (space, tab, line ends, vertical tab, form feed) at its ends, as the
// load trims names and values.
std::string TrimBlanks(const std::string& text);

// The load's text limit: the bytes of a file and all its includes share one arena of this size
// plus a terminator.
constexpr long kGunTextLimit = 262144;

// Reads the file `path` (system form, as the load opens it) and its #include files into `scan`,
// with the load's rules: the shared text limit, the first of a section or key name winning,
// #include files behind the including file, depth first, a cycle read again until the limit is
// full. `shownName` names the file in findings. Returns false if the file can't be opened.
bool ScanGunText(const char* path, const char* shownName, GunTextScan* scan);
