// `ModelReader`: what a reader of one dialect of XMI answers about a parsed document: whether it
// reads it, its classes in document order, and each class as a record. Readers know XMI and
// nothing of the target language; `ClassRenderer` turns their records into text.
//
// The readers are rows of one table (`ModelReader::choose`), tried in order: a row that the
// host's extensions leave off is passed over, a row that doesn't recognise the document gives
// way to the next, and the last, the one path of XMI 1.x, takes every document.
#pragma once

#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "modelbridge/ImportExtensions.h"
#include "xmi/ClassRecords.h"
#include "xmi/DictionaryKey.h"
#include "xmi/TypeLibraries.h"
#include "xmi/XMLElement.h"
#include "xmi/XmiHelpers.h"

// One class a reader found: its element, the packages it stands in, and the name it is known by
// (as `className` reads it).
struct FoundClass {
    _eFrom<XMLElement> element;
    std::vector<NameRecord> packagePath;  // the packages' names, outermost first
    _eString name;
};

// The classes of a document in document order, depth first, a class before the classes it
// holds; and by the name each is known by. Two classes of one name both stay in `byName`, the
// pairs united as sets of pairs are, bottom up: a lookup gives the first.
struct ModelClasses {
    ClassMap byName;
    std::vector<FoundClass> inOrder;
    std::unordered_map<const XMLElement*, std::size_t> positions;  // of each element in `inOrder`

    // The class of `element`; null when it is none of them.
    const FoundClass* find(const XMLElement& element) const {
        auto at = positions.find(&element);
        return at == positions.end() ? nullptr : &inOrder[at->second];
    }
};

// A reference that leads nowhere the reader could read, and the file or library that would
// resolve it (empty where none is known).
struct UnresolvedReference {
    _eString reference;
    std::string where;
};

class ModelReader {
public:
    virtual ~ModelReader() = default;

    // The reader reads the document: otherwise it holds no class, and generation turns it down
    // as no XMI document.
    virtual bool readsDocument() const = 0;
    // Everything the declaration of a class is made of. `context` holds what the document knows
    // of the ids of XMI 1.x: its dictionary once it is analysed, an empty one before.
    virtual ClassRecord readClass(const FoundClass& found, const _eHndl<Context>& context) const = 0;
    // The reader follows references through the dictionary of XMI 1.x ids ("xmi.id"), which
    // the document then builds for it.
    virtual bool readsXmi1Ids() const = 0;
    // Ids borne inside "XMI.extension" (the tools' own records, their diagrams among them, which
    // often repeat the ids of the model's elements) count in that dictionary.
    virtual bool countsExtensionIds() const { return true; }
    // The name of a class element as the model gives it.
    virtual NameRecord readName(const XMLElement& element) const = 0;
    // The references into other files and libraries that the classes read so far left
    // unresolved, each once.
    virtual std::vector<UnresolvedReference> unresolvedReferences() const { return {}; }
    // How many times reading the classes looked for another file (found or not): a text that
    // did depends on more than the model's own bytes.
    virtual std::size_t otherFilesSought() const { return 0; }
    // The metaclass of an element that the model defines here ("Enumeration"), not a reference
    // to one; empty for any other. `descend` false: nothing below the element is of the model
    // (a tool's own records).
    virtual _eString definedKind(const XMLElement& element, bool& descend) const = 0;

    // The id of an element that `definedKind` tells, as the dialect writes ids.
    virtual _eString elementId(const XMLElement& element) const = 0;
    // The same as a key of a table of ids.
    virtual DictionaryKey elementIdKey(const XMLElement& element) const { return DictionaryKey(elementId(element)); }

    // The classes of the document, found by one walk from its root.
    ModelClasses classes() const;
    // The name a class element is known by: its key among the classes.
    _eString className(const XMLElement& element) const;

    // The reader of the document of `root`: the first row of the table that the extensions of
    // `source` leave on and that recognises the document.
    static std::shared_ptr<const ModelReader> choose(const XMLElement& root, const ModelSource& source);
    // What the extensions declare and read beyond classes.
    static ModelParts partsOf(const ImportExtensions& extensions) {
        return {extensions.enumerations, extensions.interfaces, extensions.associationClasses, extensions.documentation,
                extensions.constraints};
    }

protected:
    explicit ModelReader(const XMLElement& root) : root(const_cast<XMLElement*>(&root)) {}

    // The element is a class of the model.
    virtual bool isClass(const XMLElement& element) const = 0;
    // The children of `element` among which the walk goes on, in document order.
    virtual WalkChildren descent(const XMLElement& element) const = 0;
    // The element is a package that classes stand in.
    virtual bool isPackage(const XMLElement& element) const = 0;

    _eFrom<XMLElement> root;
};
