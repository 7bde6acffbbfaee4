// Failure objects: what a broken invariant raises. Expected trouble never comes this way.
#pragma once

#include <exception>

#include "runtime/Config.h"

// Root of the failure objects; not counted. A standard exception, so that a host's
// `catch (const std::exception&)` catches them too.
class MB_API _eFormat : public std::exception {
public:
    virtual void format() const;
    ~_eFormat() override;
};

class MB_API _xCeption : public _eFormat {
public:
    // `file` and `line` name the raising place for a debugger that stops here; they are not kept.
    _xCeption(const wchar_t* file, unsigned line);
    // Both write into a caller's buffer and advance `pos` and `remaining`.
    virtual void writeSummary(wchar_t*& pos, unsigned& remaining) const = 0;
    virtual void writeDetail(wchar_t*& pos, unsigned& remaining) const = 0;
    // Summary and detail on one line: "runtime-system error: ...".
    const char* what() const noexcept override;

private:
    mutable char whatText[160] = {};  // filled by `what`
};

class MB_API _xDebug : public _xCeption {
public:
    using _xCeption::_xCeption;
    void writeDetail(wchar_t*& pos, unsigned& remaining) const override;
};

// A chain of tests that spells out the legal states found none of them.
class MB_API _xNoChoice : public _xDebug {
public:
    using _xDebug::_xDebug;
    void writeSummary(wchar_t*& pos, unsigned& remaining) const override;
};

// A member that the rules of the value classes make unreachable was reached.
class MB_API _xCannotHappen : public _xCeption {
public:
    _xCannotHappen(const wchar_t* file, unsigned line, const wchar_t* detail);
    void writeSummary(wchar_t*& pos, unsigned& remaining) const override;
    void writeDetail(wchar_t*& pos, unsigned& remaining) const override;

private:
    const wchar_t* detail;  // static text
};

// Copies `text` while room remains, then stores a terminator at `pos` without advancing.
// The caller leaves room for that terminator.
void appendBounded(wchar_t*& pos, const wchar_t* text, unsigned& remaining);

// A place that raises: the source file name that failure reports carry, and the line.
struct _xPlace {
    const wchar_t* file;
    unsigned line;
};

// Every place in the system that raises a failure.
namespace _xPlaces {
inline constexpr _xPlace leafConcat{L"Btree_2", 194};
inline constexpr _xPlace leafPushBack{L"Btree_2", 221};
inline constexpr _xPlace leafInsert{L"Btree_2", 272};
inline constexpr _xPlace prependNode{L"Btree_2", 443};
inline constexpr _xPlace appendLeaf{L"Btree_2", 521};
inline constexpr _xPlace branchConcatInner{L"Btree_2", 590};
inline constexpr _xPlace branchConcatLevel{L"Btree_2", 597};
inline constexpr _xPlace mergeLevel{L"Btree_2", 622};
inline constexpr _xPlace branchPushBack{L"Btree_2", 698};
inline constexpr _xPlace branchInsertIndex{L"Btree_2", 769};
inline constexpr _xPlace branchInsertCount{L"Btree_2", 771};
inline constexpr _xPlace wrapperStoreFields{L"Wrappers", 55};
inline constexpr _xPlace parserNoAction{L"Generated/Parser", 404};
inline constexpr _xPlace parserAbsurd{L"Generated/Parser", 438};
inline constexpr _xPlace stackEntryOrder{L"Generated/Pstack", 50};
inline constexpr _xPlace importerEquality{L"Generated/XMLImporter", 456};
}  // namespace _xPlaces

// The one detail text of the absurd members.
inline constexpr const wchar_t* _xAbsurdMethod = L"Absurd method called";

[[noreturn]] MB_API void raiseNoChoice(const _xPlace& place);
[[noreturn]] MB_API void raiseCannotHappen(const _xPlace& place, const wchar_t* detail = _xAbsurdMethod);
