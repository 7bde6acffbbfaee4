// Path text on this platform: resolution without the file system, and letter case from it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "runtime/Seq.h"

// The separator of path components, "/".
inline constexpr wchar_t pathSeparator = L'/';

// The absolute form of `text`: a relative text is taken against the working directory, "."
// and ".." components and repeated separators are resolved, links are not followed, and the
// file need not exist. A trailing separator stays. Empty when `text` is empty, the working
// directory is unknown, or the answer has 4096 bytes or more.
_eString resolvePath(const _eString& text);
// The bytes of `resolvePath(text)`, empty where it is.
std::string resolvedBytes(const _eString& text);

// `path` with every component that exists spelled as the file system spells it: one that
// exists as given stays; else the one entry of its directory that matches it ignoring ASCII
// case gives the spelling; else it and all after it stay as given.
_eString correctCase(const _eString& path);
// The bytes of an absolute path as `correctCase` spells it; nothing where the path stays as it
// is given (it isn't absolute, or it exists as given).
std::optional<std::string> spelledBytes(const std::string& text);

// The index just behind the last separator of `path`, or 0 without one.
int lastComponentStart(const _eString& path);

// Every byte below 128: the bytes are the units of the text they make.
bool isAscii(std::string_view bytes);
