// What a class of the model is, as a reader found it: plain records of what the model says,
// with nothing decided about how it reads in the target language. Properties with a fixed set
// of meanings are enumerations, flags are `bool`, and each kind of absence has a value of its
// own, so the renderer can tell a name the model lacks from a type it can't resolve. Readers of
// each XMI dialect fill these; `ClassRenderer` alone turns them into tokens.
//
// Each record of a model element carries the element's id (empty where the model gives none);
// classes, attributes, operations and literals their documentation and constraints, and a
// class the names of the packages it stands in.
#pragma once

#include <optional>
#include <variant>
#include <vector>

#include "runtime/Seq.h"

enum class Visibility { public_, protected_, private_, package, unknown };
enum class Changeability { changeable, frozen, addOnly, unknown };
enum class Scope { instance, classifier, unknown };
enum class Direction { in, out, inout, result, unknown };
enum class Aggregation { none, shared, composite, unknown };

// A name as the model gives it, or why there is none.
struct NameRecord {
    enum Form {
        attribute,  // a plain text (an XML attribute, or a property element read as one)
        element,    // the text of a name element, a list that the renderer splits at commas
        missing,    // the model has no name element: `text` names the element looked for
        repeated,   // the model has more than one: `text` names the element
        absent,     // the model gives no name in any form
    };
    Form form = absent;
    _eString text;

    static NameRecord plain(const _eString& text) { return {attribute, text}; }
};

// What a type reference leads to.
struct TypeRecord {
    enum Kind {
        none,        // the model gives no reference
        unresolved,  // a reference that leads nowhere, or more than one where one belongs
        named,       // a data type or any other element: reads as its name
        classType,   // a class: its name, behind "from" unless the class is a leaf
        library,     // a type of a library outside the document, by its name there
    };
    Kind kind = none;
    NameRecord name;    // of the element found
    bool leaf = false;  // for a class: it is a leaf
    _eString id;        // of the element found, where it has one

    bool resolved() const { return kind == named || kind == classType || kind == library; }
    static TypeRecord unresolvedReference() {
        TypeRecord record;
        record.kind = unresolved;
        return record;
    }
};

// The one multiplicity range of a feature, if it has exactly one.
struct MultiplicityRecord {
    bool single = false;                 // exactly one range was found; otherwise the type stands plain
    std::optional<_eString> lower;      // the bounds as written, blanks included; none when left out
    std::optional<_eString> upper;
};

// A constraint on a class or a member: its name, the language of its body where the model gives
// one, and the body as written.
struct ConstraintRecord {
    _eString id;
    NameRecord name;
    std::optional<_eString> language;
    _eString body;
};

// What a model element says beside its declaration: its documentation, its constraints, and
// the ids of the comments that the documentation was taken from.
struct NotesRecord {
    std::optional<_eString> documentation;
    std::vector<ConstraintRecord> constraints;
    std::vector<_eString> commentIds;
};

struct AttributeRecord {
    _eString id;
    NameRecord name;
    Visibility visibility = Visibility::unknown;
    Changeability changeability = Changeability::unknown;
    std::optional<_eString> initialValue;  // the body of the initial value, if there is one
    TypeRecord type;
    MultiplicityRecord multiplicity;
    NotesRecord notes;  // read where documentation or constraints are asked for
};

struct ParameterRecord {
    _eString id;
    NameRecord name;
    Direction direction = Direction::unknown;
    TypeRecord type;
    bool voidResult = false;  // a result with no type, or a type that stands for nothing
};

struct OperationRecord {
    _eString id;
    NameRecord name;
    Visibility visibility = Visibility::unknown;
    bool isAbstract = false;
    bool isLeaf = false;
    Scope scope = Scope::unknown;
    std::vector<ParameterRecord> parameters;  // in order, results among them
    NotesRecord notes;
};

// One member of a class, in the order the renderer places them.
using FeatureRecord = std::variant<AttributeRecord, OperationRecord>;

struct AssociationEndRecord {
    _eString id;
    NameRecord name;
    Visibility visibility = Visibility::unknown;
    bool isNavigable = false;
    Aggregation aggregation = Aggregation::unknown;
    _eString typeId;          // the id the end's type refers to, as written
    bool singleType = false;   // exactly one type element names it
    TypeRecord type;           // what the end's type reads as
    TypeRecord roleType;       // what names an unnamed end: the element of `typeId`
    MultiplicityRecord multiplicity;
};

struct AssociationRecord {
    _eString id;
    std::vector<AssociationEndRecord> ends;  // in document order
};

struct GeneralizationRecord {
    _eString id;
    TypeRecord parent;
};

// One literal of an enumeration.
struct LiteralRecord {
    _eString id;
    NameRecord name;
    NotesRecord notes;
};

// What a declared classifier is in the model.
enum class ClassKind { class_, interface, enumeration, associationClass };

struct ClassRecord {
    ClassKind kind = ClassKind::class_;
    _eString id;                                   // empty when the class has no id
    NameRecord name;
    bool isLeaf = false;
    bool isAbstract = false;
    std::vector<FeatureRecord> features;            // in the order they are placed
    std::vector<AssociationRecord> associations;    // those that involve the class, in order
    std::vector<GeneralizationRecord> parents;      // the generalizations whose child it is
    std::vector<NameRecord> packagePath;           // the packages it stands in, outermost first
    std::vector<GeneralizationRecord> realizations; // the interfaces it realises, in document order
    std::vector<LiteralRecord> literals;            // of an enumeration, in order
    NotesRecord notes;                              // read where documentation or constraints are asked for
};
