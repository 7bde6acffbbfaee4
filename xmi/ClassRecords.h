// What a class of the model is, as a reader found it: plain records of already-read texts,
// with nothing decided about how they read in the target language. A property that the model
// leaves out is held as the reader's placeholder ("?", or a message such as
// "?[[Missing Attribute 'xmi.idref']]"), which the renderer then carries into the text.
// Readers of each XMI dialect fill these; `ClassRenderer` alone turns them into tokens.
#pragma once

#include <vector>

#include "runtime/Seq.h"

// A name as the model writes it: an XML attribute, or the text of a name element (which the
// renderer splits at commas and whose inner blanks it replaces).
struct NameRecord {
    _eString text;              // as read; the missing-element message when there is no name at all
    bool fromElement = false;   // the text of a name element rather than an attribute
    bool given = false;         // an attribute, or exactly one name element, holds it
};

// What a type reference leads to.
struct TypeRecord {
    enum Kind {
        unresolved,  // nothing, or an id that names nothing: reads "?"
        named,       // a data type or any other element: reads as its name
        classType,   // a class: its name, behind "from" unless the class is a leaf
    };
    Kind kind = unresolved;
    NameRecord name;      // of the element found
    bool leaf = false;    // for a class: its "isLeaf" is "true"
};

// The one multiplicity range of a feature, if it has exactly one.
struct MultiplicityRecord {
    bool single = false;  // exactly one range was found; otherwise the type stands plain
    _eString lower;       // the bounds as read, blanks included
    _eString upper;
};

struct AttributeRecord {
    NameRecord name;
    _eString visibility;
    _eString changeability;  // "frozen" makes a constant
    _eString initialValue;   // the body of the initial value, "?" if there is none
    TypeRecord type;
    MultiplicityRecord multiplicity;
};

struct ParameterRecord {
    NameRecord name;
    _eString kind;            // "in", "out", "inout", "return", or whatever the model says
    TypeRecord type;
    bool voidReturn = false;  // of the kind "return", with no type or the type "void"
};

struct OperationRecord {
    NameRecord name;
    _eString visibility;
    _eString isAbstract;
    _eString isLeaf;
    _eString ownerScope;
    std::vector<ParameterRecord> parameters;  // in order, results among them
};

// One member of a class, in the order the renderer places them.
struct FeatureRecord {
    enum Kind { attribute, operation };
    Kind kind = attribute;
    AttributeRecord attributeRecord;  // for an attribute
    OperationRecord operationRecord;  // for an operation
};

struct AssociationEndRecord {
    NameRecord name;
    _eString visibility;
    _eString isNavigable;
    _eString aggregation;
    _eString typeId;           // the id the end's type refers to
    bool singleType = false;   // exactly one type element names it
    TypeRecord type;           // what the end's type reads as
    TypeRecord roleType;       // what names an unnamed end: the element of `typeId`
    MultiplicityRecord multiplicity;
};

struct AssociationRecord {
    std::vector<AssociationEndRecord> ends;  // in document order
};

struct ClassRecord {
    NameRecord name;
    _eString isLeaf;
    _eString isAbstract;
    _eString id;                                   // empty when the class has no id
    std::vector<FeatureRecord> features;           // in the order they are placed
    std::vector<AssociationRecord> associations;   // those that involve the class, in order
    std::vector<TypeRecord> parents;               // the generalizations whose child it is
};
