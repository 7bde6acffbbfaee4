// What generated text is made of beyond its words: the kind of each token, and the declarations
// that runs of tokens make, each tagged with the model element it came from. The layout keeps
// a declaration's lines together, so the text of a written file maps back to its members.
#pragma once

#include <cstdint>
#include <vector>

#include "runtime/Seq.h"

// What a token is. Only `comment` and `note` tokens are comments where the options say comments
// are told by kind; otherwise any token that starts with the comment prefix is laid out as one.
enum class TokenKind : std::int32_t {
    keyword,      // a word of the language: "class", "var", "post"
    name,         // a name the model gives: a class, a member, a type
    literal,      // a value the model gives, or a number generation works out
    punctuation,  // ";", ":", "^=", "||", ...
    comment,      // a comment generation makes
    body,         // "?" where the user completes the text: after "post", after "^="
    unknown,      // "?" where the model lacks something: a name, a type, a value
    lineBreak,    // "\n": the next token starts a line
    note,         // a comment that carries the model's documentation or constraints: wrapped
                  // pieces continue under its indentation
};

using TokenKinds = _eSeq<std::int32_t>;

// A token of generated text: its text, and what it is.
struct OutputToken {
    _eString text;
    TokenKind kind = TokenKind::keyword;

    bool operator==(const OutputToken&) const = default;
};

// The part of a class a declaration is.
enum class DeclarationPart : std::int32_t {
    classHead,  // modifiers, "class", the name, "^=", the inherits list
    section,    // a section keyword of the class
    member,     // a member's declaration: an attribute, an operation, an association end
    accessor,   // the function or selector that shows a member in a face of the class
    classEnd,   // "end ;"
};

// A stretch of generated text as the output keeps it: runs of tokens one after the other, each
// the declaration of one element or tokens that belong to none, so that joining two outputs
// joins their runs and moves nothing.
struct DeclarationRun {
    _eString id;                 // the element's id; empty when the model gives none
    DeclarationPart part;
    bool declared;               // false: tokens that belong to no declaration
    std::int32_t count;          // its number of tokens

    bool operator==(const DeclarationRun&) const = default;
};

// A run of tokens that one model element gave.
struct Declaration {
    _eString id;           // the element's id; empty when the model gives none
    DeclarationPart part;
    std::int32_t first;    // the index of its first token
    std::int32_t count;    // its number of tokens

    bool operator==(const Declaration&) const = default;
};

// Where a "?" the user completes stands in laid-out text: its line, counted from 1, and the
// bytes before it on that line.
struct BodyPosition {
    std::int32_t line;
    std::int32_t column;

    bool operator==(const BodyPosition&) const = default;
};

// Where a declaration stands in laid-out text: its first and last line, counted from 1, and
// where each of its bodies stands.
struct DeclarationLines {
    _eString id;
    DeclarationPart part;
    std::int32_t firstLine;
    std::int32_t lastLine;
    std::vector<BodyPosition> bodies;

    bool operator==(const DeclarationLines&) const = default;
};
