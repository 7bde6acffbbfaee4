// `ModelNames`: the names the text carries when names are made safe. Every name of the model that
// stands where the language wants an identifier becomes one; classes that share a name in
// different packages are told apart by their packages ("AssociationType_Enum"), and every
// reference that reaches such a class by its id uses that name. Operator symbols stay symbols.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "runtime/StringUtils.h"
#include "xmi/ModelReader.h"

class ModelNames {
public:
    // A name changed: as the model writes it, and as the text carries it.
    struct Change {
        _eString written;
        _eString given;
    };

    // The names of the classes `found`, as `reader` reads them.
    ModelNames(const ModelClasses& found, const ModelReader& reader);

    // `text` as an identifier: every character other than a letter, a digit or "_" as "_"
    // (units beyond ASCII count as letters, so "Kundé" stays), "_" before a leading digit, and
    // "?" for nothing at all.
    static _eString identifier(const _eString& text);

    // The name of a class element found.
    _eString className(const XMLElement& element) const;
    // The record with every name as the text carries it.
    ClassRecord apply(ClassRecord record, const XMLElement& element) const;
    // The classes by the names they carry, in document order; of two that still share a name,
    // the first.
    ClassMap classMap() const;
    // Every name of a class that changed, once each, in document order.
    const std::vector<Change>& classChanges() const { return changes; }
    // The names of members that `given`, the record `written` as `apply` gives it, changed.
    static std::vector<Change> memberChanges(const ClassRecord& written, const ClassRecord& given);

private:
    NameRecord memberName(const NameRecord& name) const;
    NameRecord operationName(const NameRecord& name) const;
    TypeRecord type(TypeRecord type) const;

    std::vector<const XMLElement*> inOrder;  // the classes found
    std::unordered_map<const XMLElement*, _eString> byElement;
    KeyMap<_eString> byId;  // of the classes with an id
    std::vector<Change> changes;
};
