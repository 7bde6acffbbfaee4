// `ImportExtensions`: everything an importer can do beyond the specified behaviour, as one
// value that a host hands over in one call (`XMLImporter::chooseExtensions`). Every field's
// default is off, so a value left as made keeps the specified results.
//
// The value is plain data and opens with its own size, set by the compiler of the host that
// made it: a library newer than the host's header reads the fields the host knew and keeps the
// defaults of those added since. Fields are only ever added at the end.
#pragma once

#include <cstdint>
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
};

static_assert(std::is_trivially_copyable_v<ImportExtensions>, "extensions are copied as bytes up to their size");
