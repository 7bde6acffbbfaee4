// The enumerations of the platform layer.
#pragma once

#include <cstdint>

#include "runtime/static/include/Wrappers.h"

// How a file is opened; a set of these chooses the platform's mode text.
struct FileModeType {
    enum _eEnum : std::int32_t {
        read, create, append, text
    };
    static constexpr int count = 4;
    static constexpr _aTypeSlot _aType{&_aModule29, 2};
    static constexpr const wchar_t* storageName = L"_FileModeType";
    static constexpr const wchar_t* labels[count] = {
        L"read", L"create", L"append", L"text"
    };
    using _eWrapper = _eEnumWrapper<FileModeType>;
};

// The outcome of a file operation.
struct FileError {
    enum _eEnum : std::int32_t {
        success, endOfFile, fileNotFound, directoryNotFound, fileNotOpen, diskFull,
        readError, writeError, flushError, seekError, deleteError, attribError,
        fileSpecError, permError, createError, closeError, otherError
    };
    static constexpr int count = 17;
    static constexpr _aTypeSlot _aType{&_aModule29, 3};
    static constexpr const wchar_t* storageName = L"_FileError";
    static constexpr const wchar_t* labels[count] = {
        L"success", L"endOfFile", L"fileNotFound", L"directoryNotFound", L"fileNotOpen",
        L"diskFull", L"readError", L"writeError", L"flushError", L"seekError",
        L"deleteError", L"attribError", L"fileSpecError", L"permError", L"createError",
        L"closeError", L"otherError"
    };
    using _eWrapper = _eEnumWrapper<FileError>;
};

// What a file's statistics say it permits or is.
struct FileAttribute {
    enum _eEnum : std::int32_t {
        read, write, execute, archive, system, hidden,
        directory
    };
    static constexpr int count = 7;
    static constexpr _aTypeSlot _aType{&_aModule29, 4};
    static constexpr const wchar_t* storageName = L"_FileAttribute";
    static constexpr const wchar_t* labels[count] = {
        L"read", L"write", L"execute", L"archive", L"system",
        L"hidden", L"directory"
    };
    using _eWrapper = _eEnumWrapper<FileAttribute>;
};

// Compilers with GNU extensions define `linux` as a macro; the enumerator keeps its name.
#pragma push_macro("linux")
#undef linux
// The operating system family.
struct OsType {
    enum _eEnum : std::int32_t {
        unknown, windows95, windows98, windowsNT, linux
    };
    static constexpr int count = 5;
    static constexpr _aTypeSlot _aType{&_aModule29, 5};
    static constexpr const wchar_t* storageName = L"_OsType";
    static constexpr const wchar_t* labels[count] = {
        L"unknown", L"windows95", L"windows98", L"windowsNT", L"linux"
    };
    using _eWrapper = _eEnumWrapper<OsType>;
};
#pragma pop_macro("linux")

// The side of a connection. Declared and storable; nothing here opens a socket.
struct SocketMode {
    enum _eEnum : std::int32_t {
        client, server
    };
    static constexpr int count = 2;
    static constexpr _aTypeSlot _aType{&_aModule29, 13};
    static constexpr const wchar_t* storageName = L"_SocketMode";
    static constexpr const wchar_t* labels[count] = {
        L"client", L"server"
    };
    using _eWrapper = _eEnumWrapper<SocketMode>;
};

// The outcome of a socket operation. Declared and storable; nothing here opens a socket.
struct SocketError {
    enum _eEnum : std::int32_t {
        success, unknownHost, ioError, generalError, invalidAddress, initError,
        invalidSocket, wrongType, connectionNotOpen
    };
    static constexpr int count = 9;
    static constexpr _aTypeSlot _aType{&_aModule29, 14};
    static constexpr const wchar_t* storageName = L"_SocketError";
    static constexpr const wchar_t* labels[count] = {
        L"success", L"unknownHost", L"ioError", L"generalError", L"invalidAddress",
        L"initError", L"invalidSocket", L"wrongType", L"connectionNotOpen"
    };
    using _eWrapper = _eEnumWrapper<SocketError>;
};
