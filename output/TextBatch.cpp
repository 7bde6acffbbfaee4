#include "output/TextBatch.h"

#include <algorithm>

void TextBatch::put(const _eString& text) {
    forEachRun(text, [&](const wchar_t* run, int length) { put(std::wstring_view(run, std::size_t(length))); });
}

void TextBatch::put(std::wstring_view run) {
    while (!run.empty()) {
        if (used == capacity) flush();
        int n = std::min(int(run.size()), capacity - used);
        std::copy_n(run.data(), n, units + used);
        used += n;
        run.remove_prefix(std::size_t(n));
    }
}

void TextBatch::flush() {
    if (used == 0) return;
    FileError::_eEnum written = FileError::success;
    writeUnits(file, units, std::size_t(used), written);
    if (status == FileError::success) status = written;
    used = 0;
}
