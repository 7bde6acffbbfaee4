#include "output/TextBatch.h"

#include <algorithm>

void TextBatch::put(const _eString& text) {
    forEachRun(text, [&](const wchar_t* run, int length) {
        while (length > 0) {
            if (used == capacity) flush();
            int n = std::min(length, capacity - used);
            std::copy_n(run, n, units + used);
            used += n;
            run += n;
            length -= n;
        }
    });
}

void TextBatch::flush() {
    if (used == 0) return;
    FileError::_eEnum written = FileError::success;
    environment.writeText(file, _eString(used, units), written);
    if (status == FileError::success) status = written;
    used = 0;
}
