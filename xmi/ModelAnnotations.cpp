#include "xmi/ModelAnnotations.h"

#include <algorithm>

#include "runtime/StringUtils.h"

template <class T>
const std::vector<T>& ModelAnnotations::at(const ById<T>& map, const _eString& id) {
    static const std::vector<T> none;
    if (map.empty() || id.isEmpty()) return none;
    auto found = map.find(id);
    return found == map.end() ? none : found->second;
}

void ModelAnnotations::addComment(const DictionaryKey& target, const _eString& commentId, const _eString& text) {
    if (!target.isEmpty()) comments[target].push_back({commentId, text});
}

void ModelAnnotations::addComment(const DictionaryKey& target, const _eString& commentId, const XMLElement& comment,
                                  CommentText textOf) {
    if (!target.isEmpty()) comments[target].push_back({commentId, {}, &comment, textOf});
}

void ModelAnnotations::addConstraint(const DictionaryKey& target, const ConstraintRecord& constraint) {
    if (!target.isEmpty()) constraints[target].push_back(constraint);
}

void ModelAnnotations::addRealization(const DictionaryKey& client, const GeneralizationRecord& realization) {
    if (client.isEmpty()) return;
    std::vector<GeneralizationRecord>& list = realizations[client];
    bool known = std::any_of(list.begin(), list.end(), [&](const GeneralizationRecord& each) {
        return each.id == realization.id && each.parent.id == realization.parent.id;
    });
    if (!known) list.push_back(realization);
}

void ModelAnnotations::addAssociationClass(const DictionaryKey& classId, const XMLElement* element) {
    std::vector<const XMLElement*>& list = associationClasses[classId];
    if (std::find(list.begin(), list.end(), element) == list.end()) list.push_back(element);
}

void ModelAnnotations::addDocumentation(NotesRecord& notes, const _eString& text) {
    if (trimSpaces(text).isEmpty()) return;
    if (!notes.documentation) {
        notes.documentation = text;
        return;
    }
    std::wstring whole = toWString(*notes.documentation);
    std::wstring part = toWString(text);
    if (whole == part || whole.find(L"\n\n" + part) != std::wstring::npos || whole.rfind(part + L"\n\n", 0) == 0) return;
    notes.documentation = *notes.documentation + L"\n\n" + text;
}

void ModelAnnotations::addTo(NotesRecord& notes, const _eString& id, const ModelParts& parts,
                             const _eHndl<Context>& context) const {
    auto seen = [&](const _eString& each) {
        return std::find(notes.commentIds.begin(), notes.commentIds.end(), each) != notes.commentIds.end();
    };
    if (parts.documentation)
        for (const Comment& comment : at(comments, id)) {
            if (!comment.id.isEmpty() && seen(comment.id)) continue;
            // A comment without text documents nothing, and isn't counted as taken in.
            _eString text = comment.textIn(context);
            if (trimSpaces(text).isEmpty()) continue;
            addDocumentation(notes, text);
            notes.commentIds.push_back(comment.id);
        }
    if (parts.constraints)
        for (const ConstraintRecord& constraint : at(constraints, id)) {
            bool known = std::any_of(notes.constraints.begin(), notes.constraints.end(), [&](const ConstraintRecord& each) {
                return !each.id.isEmpty() && each.id == constraint.id;
            });
            if (!known) notes.constraints.push_back(constraint);
        }
}

const std::vector<GeneralizationRecord>& ModelAnnotations::realizationsOf(const _eString& classId) const {
    return at(realizations, classId);
}

const std::vector<const XMLElement*>& ModelAnnotations::associationClassesAt(const _eString& classId) const {
    return at(associationClasses, classId);
}
