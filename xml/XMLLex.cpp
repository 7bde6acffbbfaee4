#include "xml/XMLLex.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "xml/TextEncodings.h"

namespace {

// The punctuation that the grammar tells apart, each its own token.
constexpr const char* punctuation = "()<>[]%&/!?:;.,=-_|'\"*#@$";

}  // namespace

const XMLLex::CodeTable& XMLLex::codes() {
    static const CodeTable table = [] {
        CodeTable t{};
        for (int c = 0; c < 256; ++c) {
            std::int32_t code;
            if (c == 9 || c == 10 || c == 13 || c == 32)
                code = Token::whiteSpace;
            else if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'))
                code = c;
            else if (c < 128 && c != 0 && std::char_traits<char>::find(punctuation, 25, char(c)) != nullptr)
                code = c;
            else if (c == 183)
                code = Token::extender;
            else if ((c >= 192 && c <= 214) || (c >= 216 && c <= 246) || c >= 248)
                code = Token::baseChar;
            else if (c > 32)
                code = Token::otherChar;
            else
                code = Token::illegalChar;
            t.table[c] = code;
        }
        return t;
    }();
    return table;
}

XMLLex::XMLLex(const Environment* environment, std::int32_t tabWidth)
    : environment(environment), tabWidth(tabWidth) {}

bool XMLLex::equalFields(const XMLLex& other) const {
    return file == other.file && currentChar == other.currentChar && bytesLeft == other.bytesLeft &&
           here.equalFields(other.here) && errors == other.errors && path == other.path &&
           environment == other.environment && tabWidth == other.tabWidth;
}

void XMLLex::openFile(const _eHndl<FileName>& fileName, bool& succeeded) {
    _eFreeze freeze(this);
    succeeded = false;
    path = fileName->fullPathText();
    _eUnion opened = environment->open(path, FileModes(FileModeType::read));
    _eHndl<FileRef> ref = opened.as<FileRef>();
    if (ref.isNull()) {
        addError(errors, _eHndl<Location>(new Location(fileName)), XMLErrorType::fileOpen, {path, L"read"});
        return;
    }
    std::int32_t size = 0;
    FileError::_eEnum error;
    environment->fileSize(ref, size, error);
    if (error != FileError::success) {
        addError(errors, _eHndl<Location>(new Location(fileName)), XMLErrorType::fileTell, {path});
        environment->close(ref, error);
        return;
    }
    bytesLeft = size;
    file = ref;
    here = Location(fileName);
    tokenAt = Position(here);
    succeeded = true;
}

void XMLLex::readAsUtf8() {
    _eFreeze freeze(this);
    std::FILE* stream = file.isNull() ? nullptr : file->getStream();
    if (stream == nullptr || bytesLeft <= 0) return;
    std::string head(std::size_t(std::min<std::int32_t>(bytesLeft, 1024)), '\0');
    head.resize(std::fread(head.data(), 1, head.size(), stream));
    TextEncodings::Encoding encoding = TextEncodings::detect(head);
    std::size_t mark = TextEncodings::markLength(head, encoding);
    bool whole = encoding == TextEncodings::Encoding::asIs || encoding == TextEncodings::Encoding::utf8Mark;
    if (whole && std::fseek(stream, long(mark), SEEK_SET) == 0) {
        bytesLeft -= std::int32_t(mark);
        return;
    }
    // Converted, or read on where the stream can't go back: the rest joins what was read.
    std::string bytes = head;
    bytes.resize(std::size_t(bytesLeft));
    bytes.resize(head.size() + std::fread(bytes.data() + head.size(), 1, bytes.size() - head.size(), stream));
    converted = std::make_shared<std::string>(TextEncodings::toUtf8(bytes, encoding));
    FileError::_eEnum error;
    environment->close(file, error);
    file.reset();
    bytesLeft = 0;
    if (converted->empty()) return;
    std::FILE* memory = fmemopen(converted->data(), converted->size(), "r");
    if (memory == nullptr) {
        addError(errors, place(), XMLErrorType::fileRead, {path});
        return;
    }
    file = new FileRef(memory, false);
    bytesLeft = std::int32_t(converted->size());
}

void XMLLex::closeFile() {
    _eFreeze freeze(this);
    if (!file.isNull()) {
        FileError::_eEnum error;
        environment->close(file, error);
        if (error != FileError::success) addError(errors, place(), XMLErrorType::fileClose, {path});
    }
    file.reset();
    bytesLeft = 0;
    currentChar = 10;
    next = filled = 0;
}

bool XMLLex::refill() {
    std::FILE* stream = file.isNull() ? nullptr : file->getStream();
    next = filled = 0;
    if (stream == nullptr) return false;
    if (file->isLastWrite()) file->turnTo(false);
    if (buffer.empty()) buffer.resize(bufferBytes);
    filled = std::fread(buffer.data(), 1, buffer.size(), stream);
    return filled > 0;
}

void XMLLex::advance() {
    here.pass(currentChar, tabWidth);
    if (bytesLeft < 1) {
        currentChar = 10;
        return;
    }
    if (MB_UNLIKELY(next == filled) && !refill()) {
        addError(errors, place(), XMLErrorType::fileRead, {path});
        bytesLeft = 0;
        currentChar = 10;
        return;
    }
    currentChar = buffer[next++];
    --bytesLeft;
}

std::int32_t XMLLex::readRun(const bool (&member)[256], bool stopAtLineEnd, unsigned char* units, std::int32_t room) {
    std::int32_t limit = std::min(room, bytesLeft - 1);
    if (limit <= 0) return 0;
    std::int32_t count = 0;
    while (count < limit) {
        if (next == filled && !refill()) break;  // a failed read: the next token reports it
        const unsigned char* bytes = buffer.data() + next;
        std::int32_t available = std::int32_t(std::min<std::size_t>(filled - next, std::size_t(limit - count)));
        std::int32_t taken = 0;
        if (stopAtLineEnd)
            while (taken < available && member[bytes[taken]] && bytes[taken] != 10) ++taken;
        else {
            // Four at a time while all four belong, then one by one.
            while (taken + 4 <= available && (member[bytes[taken]] & member[bytes[taken + 1]] &
                                              member[bytes[taken + 2]] & member[bytes[taken + 3]]))
                taken += 4;
            while (taken < available && member[bytes[taken]]) ++taken;
        }
        if (taken > 0) {
            here.passAll(currentChar, bytes, taken - 1, tabWidth);
            currentChar = bytes[taken - 1];
            std::memcpy(units + count, bytes, std::size_t(taken));
        }
        next += std::size_t(taken);
        count += taken;
        if (taken < available) break;
    }
    bytesLeft -= count;
    return count;
}

_eHndl<Location> XMLLex::place() const { return _eHndl<Location>(new Location(here)); }

void XMLLex::nextToken(_eHndl<Terminal>& token) {
    advance();
    std::int32_t code = bytesLeft <= 0 && currentChar == 10 ? Token::endOfFile
                                                            : tokenCode(static_cast<unsigned char>(currentChar));
    // Line and column move on; the file stays, and so does the count on it.
    tokenAt.line = here.getLine();
    tokenAt.column = here.getColumn();
    // A token that nothing else holds is remade for the next byte: most tokens are folded into
    // a node and dropped before the next one is read.
    auto remade = [&](_eHndl<Terminal>& held) {
        return !held.isNull() && held->countWord() == 1 && held->retake(tokenAt, code, currentChar);
    };
    if (remade(token)) return;
    for (_eHndl<Terminal>& spare : spares)
        if (remade(spare)) {
            std::swap(token, spare);
            return;
        }
    _eHndl<Terminal> made;
    if (SimpleTerminal::holds(code))
        made = new SimpleTerminal(tokenAt, code);
    else
        made = new ComplexTerminal(tokenAt, code, currentChar);
    if (!token.isNull()) {
        spares[nextSpare] = std::move(token);
        nextSpare = (nextSpare + 1) % spareRoom;
    }
    token = std::move(made);
}
