// `ImportExtensions`: everything an importer can do beyond the specified behaviour, as one
// value that a host hands over in one call (`XMLImporter::chooseExtensions`, or the `extensions`
// of the facade's options). Every field's default is off, so a value left as made keeps the
// specified results. Plain C++17, so that hosts of the importer and of the facade share it.
//
// The value is plain data and opens with its own size, set by the compiler of the host that
// made it: a library newer than the host's header reads the fields the host knew and keeps the
// defaults of those added since. Fields are only ever added at the end.
//
// The switches are also known by name (`importSwitches`), so that the command line, the C API
// and Python take each new one without a change of their own.
//
// It is installed beside the facade's headers and beside the importer's, where hosts of either
// find it; the guard makes the two copies one.
#ifndef MODELBRIDGE_IMPORT_EXTENSIONS_H
#define MODELBRIDGE_IMPORT_EXTENSIONS_H

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>

struct ImportExtensions {
    std::uint32_t size = sizeof(ImportExtensions);  // of the value as the host's header has it

    // Read UML 2 models saved as XMI 2.x (root "xmi:XMI" in an XMI 2 namespace, or a UML root
    // such as "uml:Model" with an "xmi:version"): their classes are listed and generated as the
    // same model saved as XMI 1.2 would be. Off by default.
    bool xmi2 = false;
    // Find classes wherever UML tools put them, not only along the one path of XMI 1.x: every
    // "UML:Class" with an "xmi.id" and no "xmi.idref" below "XMI.content", in nested models,
    // packages, subsystems and other classes, and written as an empty-element tag; in a document
    // whose root is "XMI", unprefixed UML 1.x tags read as their "UML:" forms. Off by default.
    bool anywhere = false;
    // Headers of generated files name `fixedTime` (seconds since 1970, UTC) instead of the
    // clock's time, so that generation repeats byte for byte. Off by default.
    bool useFixedTime = false;
    std::int64_t fixedTime = 0;
    // Text taken from the model is never laid out as a comment, whatever it starts with; only
    // the comments generation makes itself are. Off by default: a model text that starts with
    // the comment prefix is laid out as a comment.
    bool plainModelText = false;
    // The predefined entities ("&amp;", "&lt;", "&gt;", "&quot;", "&apos;") and character
    // references read as the characters they stand for, in attribute values and in character
    // data. Off by default: an entity reads as the placeholder "[[EntityRef'amp']]", and a
    // reference in character data is left out of its text.
    bool decodeReferences = false;
    // Members read in every form exporters write, into the same declarations as their long
    // forms: attributes, operations, parameters, generalizations and association ends written as
    // empty-element tags; ids, names and multiplicities in XML attributes ("type", "child" and
    // "parent", "participant", multiplicity="0..*"); features straight under the class, with the
    // older attribute names ("scope", "static", "abstract", "value", a "type" by name). Off by
    // default: an empty-element tag is a reference or nothing.
    bool everyForm = false;
    // The input read as the characters it stands for whatever its encoding: a UTF-8 byte-order
    // mark is passed over, UTF-16 with its mark (or with "<?" as its first characters) and a
    // declared ISO-8859-1 or windows-1252 are converted to UTF-8 before the lexer reads them.
    // Off by default: bytes are read as they stand, and a byte-order mark is a syntax error.
    bool decodeEncodings = false;
    // Every name the text carries is a Tarvane identifier: characters other than letters, digits
    // and "_" become "_" (letters beyond ASCII stay), a leading digit gets a "_" before it, and
    // "operator<<" is the operator "<<". Classes that share a name in different packages are
    // named with as many of their packages as tell them apart ("AssociationType_Enum"), in
    // their files, the class list and every reference to them. Off by default: names stand as
    // the model writes them.
    bool safeNames = false;
    // A type that a UML 2 model refers to in another file ("href") reads as the name that file
    // gives it: a relative reference is read against the model's folder,
    // "platform:/resource/PROJECT/PATH" against the nearest folder above the model that holds
    // PROJECT, any other by the file's name in `libraryFolders`; the UML and Eclipse primitive
    // types, Ecore's and XML Schema's data types and Enterprise Architect's primitive ids
    // ("EAJava_int") by name without any file. A reference that stays unresolved reads "?". Off
    // by default: a reference into another file reads as the fragment after its "#".
    bool crossFileTypes = false;
    // The folders searched by file name, `libraryFolderCount` of them; the importer copies them
    // when the value is chosen.
    const char* const* libraryFolders = nullptr;
    std::uint32_t libraryFolderCount = 0;
    // The importer tells what the text leaves out (`getLeftOutReport`): elements no
    // declaration is made for or carries, classes dropped or off the path, references left unresolved,
    // placeholders and names changed. Off by default: nothing is said.
    bool reportLeftOut = false;
    // Enumerations ("UML:Enumeration", "uml:Enumeration") are declared as classes of their
    // literals, "class Colour ^= enum red, green, blue end;", listed and written like classes;
    // one without literals is left out. Off by default: an enumeration is only a type's name.
    bool enumerations = false;
    // Interfaces are declared as deferred classes whose operations are all deferred, and a
    // class lists the interfaces it realises in its "inherits" after its parents; a type that
    // is an interface reads as a class that isn't a leaf ("from I"). Off by default.
    bool interfaces = false;
    // Association classes are declared as classes with their own attributes and operations,
    // and give the classes at their ends members as any association does. Off by default.
    bool associationClasses = false;
    // The documentation of a class, interface, enumeration, attribute, operation or literal
    // stands as comment lines before its declaration, in every form tools write it (tagged
    // values, comment attributes, comments that annotate the element, a tool's own records).
    // Off by default.
    bool documentation = false;
    // A constraint on a class or a member stands before its declaration as the comment
    // "// constraint NAME (LANGUAGE): BODY". Off by default.
    bool constraints = false;
};

static_assert(std::is_trivially_copyable_v<ImportExtensions>, "extensions are copied as bytes up to their size");

// A switch of the extensions by the name users give it, with the bit that stands for it among
// the flags of the C API.
struct ImportSwitch {
    const char* name;                // "decode-references"
    bool ImportExtensions::*field;
    unsigned flag;                   // MB_DECODE_REFERENCES
    const char* help;                // one line
};

inline constexpr ImportSwitch importSwitches[] = {
    {"xmi2", &ImportExtensions::xmi2, 1u, "read UML 2 models saved as XMI 2.x"},
    {"anywhere", &ImportExtensions::anywhere, 2u,
     "find classes wherever UML tools put them, not only on the one path of XMI 1.x"},
    {"plain-model-text", &ImportExtensions::plainModelText, 8u,
     "never lay out a text of the model as a comment, whatever it starts with"},
    {"decode-references", &ImportExtensions::decodeReferences, 16u,
     "read entities and character references as the characters they stand for"},
    {"every-form", &ImportExtensions::everyForm, 32u,
     "read members in every form exporters write (empty-element tags, ids in XML attributes)"},
    {"decode-encodings", &ImportExtensions::decodeEncodings, 64u,
     "read a byte-order mark, UTF-16, ISO-8859-1 and windows-1252 as the characters they stand for"},
    {"safe-names", &ImportExtensions::safeNames, 128u,
     "make every name an identifier, and tell same-named classes apart by their packages"},
    {"cross-file-types", &ImportExtensions::crossFileTypes, 256u,
     "read the names of types that a model refers to in other files and well-known libraries"},
    {"report", &ImportExtensions::reportLeftOut, 512u, "say what the text leaves out of the model"},
    {"enumerations", &ImportExtensions::enumerations, 1024u, "declare enumerations as classes of their literals"},
    {"interfaces", &ImportExtensions::interfaces, 2048u,
     "declare interfaces as deferred classes, and list the interfaces a class realises"},
    {"association-classes", &ImportExtensions::associationClasses, 4096u,
     "declare association classes with their own members"},
    {"documentation", &ImportExtensions::documentation, 8192u,
     "put the model's documentation before each declaration as comments"},
    {"constraints", &ImportExtensions::constraints, 16384u, "put the model's constraints before their declarations as comments"},
};

// Every switch on: what the command line, the facade, the C API and Python read with unless
// the specified behaviour is asked for.
inline ImportExtensions everyExtension() {
    ImportExtensions extensions;
    for (const ImportSwitch& each : importSwitches) extensions.*each.field = true;
    return extensions;
}

// Sets the switch of that name; false when there is none.
inline bool setImportSwitch(ImportExtensions& extensions, std::string_view name, bool on) {
    for (const ImportSwitch& each : importSwitches)
        if (name == each.name) {
            extensions.*each.field = on;
            return true;
        }
    return false;
}

#endif
