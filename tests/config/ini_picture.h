// Test helper: an IniFile's sections and keys, with their views and cursors, as one line of text.
#pragma once
#include <sstream>
#include <string>

#include "config/ini_file.h"

inline std::string cursorOf(const CursorList& list) {
  std::int32_t position = -1, at = 0;
  for (CursorNode* n = list.head; n; n = n->next, at++) position = n == list.current ? at : position;
  return std::to_string(position) + "/" + std::to_string(list.index);
}

// "[name]k=v,k2=(null);[name2]..." without moving a cursor; the object's own strings show as (empty),
// (true), (false). `views` adds ":type:int:float" to each value, `cursors` "{position/index}".
inline std::string iniPicture(const IniFile& ini, bool views = false, bool cursors = false) {
  std::ostringstream out;
  if (cursors) out << "{" << cursorOf(ini.sections) << "}";
  for (CursorNode* s = ini.sections.head; s; s = s->next) {
    auto* section = static_cast<IniSection*>(s->payload);
    out << "[" << section->name << "]";
    if (cursors) out << "{" << cursorOf(section->keys) << "}";
    for (CursorNode* k = section->keys.head; k; k = k->next) {
      auto* key = static_cast<IniKey*>(k->payload);
      const char* v = key->stringValue;
      out << (k == section->keys.head ? "" : ",") << key->name << "="
          << (!v ? "(null)" : v == ini.emptyString ? "(empty)" : v == ini.trueString ? "(true)"
              : v == ini.falseString ? "(false)" : v);
      if (views) out << ":" << key->type << ":" << key->intValue << ":" << key->floatValue;
    }
    out << ";";
  }
  return out.str();
}
