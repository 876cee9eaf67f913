// String helpers: the kernel's text primitives on NUL-terminated UTF-8 byte strings.
#pragma once

// A null text and an empty text count as the same wherever emptiness is tested.

// 1 if the text is null or empty, else 0.
int strIsEmpty(const char* text);
// Puts a NUL in the first byte of a non-null buffer; the bytes behind it stay.
void strClear(char* buffer);
// A copy on the heap, freed with strFree: null for null or when memAlloc fails; an empty text
// gives a one-byte empty string.
char* strDuplicate(const char* text);
// Frees *text if it isn't null and sets it to null. `text` itself must not be null.
void strFree(char** text);
// 1 if both texts are non-empty and equal; case folds only a-z/A-Z when caseSensitive is 0.
int strEquals(const char* a, const char* b, int caseSensitive);
// Copies at most size - 1 bytes, never cutting a UTF-8 sequence, and fills the rest of the
// `size` bytes with NUL. An empty or null source writes one NUL byte only. size >= 1.
// Returns the destination.
char* strCopyN(char* destination, const char* source, int size);
// Appends behind the destination's text within a buffer of `size` bytes in all, never cutting a
// UTF-8 sequence; the result always ends within the buffer. Returns the destination.
char* strAppendN(char* destination, const char* source, int size);
// Change a-z to A-Z (strUpper) or A-Z to a-z (strLower) in place; other bytes stay.
char* strUpper(char* text);
char* strLower(char* text);
// Removes leading and trailing white space (space, \t, \n, \v, \f, \r) in place.
char* strTrim(char* text);
