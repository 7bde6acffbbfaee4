#include "xmi/ModelReader.h"

#include "xmi/ClassRenderer.h"
#include "xmi/Xmi1Reader.h"
#include "xmi/Xmi2Reader.h"
#include "xmi/XmiHelpers.h"

// Every element the walk goes into unites the classes below it with its own, if it is one;
// the classes in order are those the walk enters.
ModelClasses ModelReader::classes() const {
    struct Open {
        ClassMap classes;  // of the element and those below it done so far
        bool package;      // the element is a package: its name stands in the path
    };
    ModelClasses found;
    std::vector<Open> open;  // the elements entered and not yet left
    std::vector<NameRecord> packages;
    walkTree(
        *root,
        [&](const XMLElement& element) {
            Open entered{{}, isPackage(element)};
            if (isClass(element)) {
                _eString name = className(element);
                entered.classes.put(name, const_cast<XMLElement*>(&element));
                found.positions.emplace(&element, found.inOrder.size());
                found.inOrder.push_back({const_cast<XMLElement*>(&element), packages, name});
            }
            if (entered.package) packages.push_back(readName(element));
            open.push_back(entered);
            return descent(element);
        },
        [&](const XMLElement&) {
            Open done = open.back();
            open.pop_back();
            if (done.package) packages.pop_back();
            if (open.empty())
                found.byName = done.classes;
            else
                open.back().classes.unitePairs(done.classes);
        });
    return found;
}

_eString ModelReader::className(const XMLElement& element) const { return ClassRenderer::typeName(readName(element)); }

namespace {

// A row of the table of readers: whether the host's extensions leave it on, and the reader it
// gives for a document, or null when it doesn't recognise the document.
struct ReaderRow {
    bool (*enabled)(const ImportExtensions& extensions);
    std::shared_ptr<const ModelReader> (*recognise)(const XMLElement& root, const ModelSource& source);
};

const ReaderRow readerTable[] = {
    {[](const ImportExtensions& e) { return e.xmi2; }, &Xmi2Reader::recognise},
    {[](const ImportExtensions& e) { return e.anywhere; }, &Xmi1AnywhereReader::recognise},
    {[](const ImportExtensions&) { return true; }, &Xmi1PathReader::recognise},
};

}  // namespace

std::shared_ptr<const ModelReader> ModelReader::choose(const XMLElement& root, const ModelSource& source) {
    for (const ReaderRow& row : readerTable)
        if (row.enabled(source.extensions))
            if (std::shared_ptr<const ModelReader> reader = row.recognise(root, source)) return reader;
    return nullptr;  // never: the last row takes every document
}
