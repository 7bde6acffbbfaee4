// `ClassRenderer`: every rule of generated class text in one place. It turns the records that a
// reader of the model fills (xmi/ClassRecords.h) into runs of Tarvane tokens, each token with
// its kind and each member's run a declaration tagged with the id of its model element: the
// class declaration with its modifiers, `inherits` list and sections; attributes as variables
// or constants with their accessors; operations as constructors, schemas, functions or
// operators; the members that associations give; enumerations and interfaces; the model's
// documentation and constraints as comments before what they document; multiplicities as
// collection types; literals; names with the reserved-word escape and the names of the built-in and library data types.
// Layout into lines is the business of the output writer.
#pragma once

#include "output/TarvaneSections.h"
#include "xmi/ClassRecords.h"

class ClassRenderer {
public:
    // The declaration of one class: modifiers, "class NAME ^=", the inherits list, the
    // sections, "end;".
    static _eHndl<TarvaneOutput> classDeclaration(const ClassRecord& record);
    // How many "?" the declaration of `record` holds where the model lacks something: a name,
    // a type, a value. Counted without making the declaration.
    static int unknownCount(const ClassRecord& record);
    // The declaration of an enumeration: "class NAME ^= enum", its literals, "end;".
    static _eHndl<TarvaneOutput> enumerationDeclaration(const ClassRecord& record);

    // The name that a class or data type is known by: in types, in inherits lists, in the class
    // list and as a file name. Never escaped; "boolean" reads "bool", "float" and "double" "real".
    static _eString typeName(const NameRecord& name);
    // The name as it stands in the text; an attribute's text trimmed, a name element's split at
    // commas, each piece trimmed and its blanks made "_", joined by ", ". `escape` marks each
    // reserved word.
    static _eString nameText(const NameRecord& name, bool escape);
    // The message that stands for a name the model lacks; empty for a name it gives.
    static _eString absentNameText(const NameRecord& name);
    // `nameText`, or "?" where that is empty.
    static _eString nameOrUnknown(const NameRecord& name, bool escape);
    // The model gives a name, and it isn't empty.
    static bool hasName(const NameRecord& name);

    // What a single feature contributes to the sections.
    static _eHndl<TarvaneSections> attributeSections(const AttributeRecord& attribute);
    static _eHndl<TarvaneSections> operationSections(const OperationRecord& operation, const _eString& className);
    static _eHndl<TarvaneSections> associationSections(const AssociationRecord& association, const _eString& classId);

    // How a type reference reads: "?", a name, or ("from", name) for a class that isn't a leaf.
    static _eHndl<TarvaneOutput> typeTokens(const TypeRecord& type);
    // The type with its multiplicity: optional, plain, a set, or a set with a lower bound on its
    // size; `isRef` puts "ref" before the type when there is a multiplicity.
    static _eHndl<TarvaneOutput> multiplicityType(const MultiplicityRecord& multiplicity, const TypeRecord& type,
                                                  bool isRef);
    // The type leads to something that reads "void".
    static bool readsVoid(const TypeRecord& type);
    // A model literal in the target language: "100L" to "100", "'a'" to "`a`".
    static _eString literalText(const _eString& value);

    // The prefix of the name of a member for an unnamed association end.
    static constexpr const wchar_t* rolePrefix = L"my";
};
