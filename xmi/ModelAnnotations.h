// `ModelAnnotations`: what a model says about its elements from elsewhere than the elements
// themselves, gathered in one walk over the document: comments that annotate an element,
// constraints on it, the interfaces a class realises, the association classes at a class. Each
// reader fills it from its own dialect; the records of a class take from it by id.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "runtime/StringUtils.h"
#include "xmi/ClassRecords.h"
#include "xmi/Context.h"
#include "xmi/DictionaryKey.h"

class XMLElement;

class ModelAnnotations {
public:
    // How the text of a comment element reads.
    using CommentText = _eString (*)(const XMLElement& comment, const _eHndl<Context>& context);

    // The text of the comment `commentId` documents the element `target` (unless it is blank:
    // `addTo` tells, for a text given and for one read).
    void addComment(const DictionaryKey& target, const _eString& commentId, const _eString& text);
    // The same for the comment element `comment`, whose text `textOf` reads only when the
    // documentation of `target` is asked for and hasn't taken the comment in already: a model's
    // comments, held as texts until then, would outweigh the rest of it.
    void addComment(const DictionaryKey& target, const _eString& commentId, const XMLElement& comment, CommentText textOf);
    void addConstraint(const DictionaryKey& target, const ConstraintRecord& constraint);
    // The class `client` realises the interface that `realization` names.
    void addRealization(const DictionaryKey& client, const GeneralizationRecord& realization);
    // The association class `element` has an end at the class `classId`.
    void addAssociationClass(const DictionaryKey& classId, const XMLElement* element);

    // `notes` with what is gathered for the element `id` and isn't in them yet, as far as
    // `parts` asks: its comments joined to its documentation, then its constraints.
    void addTo(NotesRecord& notes, const _eString& id, const ModelParts& parts, const _eHndl<Context>& context) const;
    // A text joined to the documentation in `notes` as a paragraph of its own, unless it is
    // there already.
    static void addDocumentation(NotesRecord& notes, const _eString& text);
    const std::vector<GeneralizationRecord>& realizationsOf(const _eString& classId) const;
    const std::vector<const XMLElement*>& associationClassesAt(const _eString& classId) const;

private:
    struct Comment {
        _eString id;
        _eString text;                        // as given, or
        const XMLElement* element = nullptr;  // the comment, read by
        CommentText textOf = nullptr;

        _eString textIn(const _eHndl<Context>& context) const { return element ? textOf(*element, context) : text; }
    };
    // Lists by the id of the element they belong to.
    template <class T>
    using ById = KeyMap<std::vector<T>>;
    template <class T>
    static const std::vector<T>& at(const ById<T>& map, const _eString& id);

    ById<Comment> comments;
    ById<ConstraintRecord> constraints;
    ById<GeneralizationRecord> realizations;
    ById<const XMLElement*> associationClasses;
};
