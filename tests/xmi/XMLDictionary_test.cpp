// The id dictionary of random trees against a plain model of its rules, the index of
// relationships by class, and the table of shared names.
#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <random>
#include <set>

#include "support/ParseRun.h"
#include "xml/XMLDocument.h"

namespace {

// The rules of the dictionary on plain containers: a left fold of merges over the children,
// then the element's own id.
struct PlainDictionary {
    std::map<std::wstring, const XMLElement*> entries;
    std::set<std::wstring> duplicates;

    void add(const std::wstring& id, const XMLElement* element) {
        if (entries.count(id) != 0)
            duplicates.insert(id);
        else
            entries[id] = element;
    }

    static PlainDictionary merge(const PlainDictionary& a, const PlainDictionary& b) {
        PlainDictionary out;
        out.duplicates = a.duplicates;
        out.duplicates.insert(b.duplicates.begin(), b.duplicates.end());
        for (const auto& [id, element] : a.entries)
            if (b.entries.count(id) != 0) out.duplicates.insert(id);
        for (const auto* side : {&a, &b})
            for (const auto& [id, element] : side->entries)
                if (out.duplicates.count(id) == 0) out.entries[id] = element;
        return out;
    }

    static PlainDictionary of(const XMLElement& element) {
        PlainDictionary folded;
        bool first = true;
        const auto& items = element.getContent()->getItems();
        for (int i = 0; i < items.size(); ++i) {
            auto* child = dynamic_cast<const XMLElement*>(items.get(i).get());
            if (child == nullptr) continue;
            folded = first ? of(*child) : merge(folded, of(*child));
            first = false;
        }
        if (element.hasAttribute(L"xmi.id"))
            folded.add(toWString(element.attributeText(L"xmi.id", Context::shared())), &element);
        return folded;
    }
};

// Nested elements whose ids come from a small pool, so that siblings, cousins and ancestors
// share ids in every combination; with `related`, some are associations and generalizations.
void randomElement(std::mt19937& random, int depth, std::string& out, const std::string& prefix,
                   bool related = false) {
    static const std::string names[] = {"e", "UML:Association", "UML:Generalization"};
    const std::string& name = related ? names[random() % 3] : names[0];
    out += "<" + name;
    if (random() % 4 != 0) out += " xmi.id='" + prefix + std::to_string(random() % 7) + "'";
    out += ">";
    int children = depth >= 4 ? 0 : int(random() % 4);
    for (int i = 0; i < children; ++i) randomElement(random, depth + 1, out, prefix, related);
    out += "</" + name + ">";
}

// The same fold through the dictionary's own operations, `merge` and `add`, as a value.
_eHndl<XMLDictionary> foldedByOperations(const XMLElement& element) {
    _eHndl<XMLDictionary> folded;
    const auto& items = element.getContent()->getItems();
    for (int i = 0; i < items.size(); ++i)
        if (auto* child = dynamic_cast<const XMLElement*>(items.get(i).get())) {
            _eHndl<XMLDictionary> below = foldedByOperations(*child);
            folded = folded.isNull() ? below : folded->merge(*below);
        }
    if (folded.isNull()) folded = XMLDictionary::empty();
    if (element.hasAttribute(L"xmi.id"))
        folded = folded->add(element.attributeText(L"xmi.id", Context::shared()), const_cast<XMLElement*>(&element));
    return folded;
}

}  // namespace

// The tree's dictionary, and the fold by the dictionary's operations, against the plain rules;
// and the merge of two trees' dictionaries against the merge of their folds.
TEST(XMLDictionary, RandomTreesFollowTheRulesOfMerge) {
    std::mt19937 random(20261123);
    ParseOutcome before;  // the tree of the round before
    for (int round = 0; round < 400; ++round) {
        std::string text;
        // Later rounds give ids long enough to lie in two leaves of their strings, and then in
        // several; such ids are held by their values in bytes, and asked for by strings.
        std::string prefix = round < 200 ? "i" : round < 300 ? std::string(40, 'y') : std::string(300, 'x');
        randomElement(random, 0, text, prefix);
        ParseOutcome parsed = parseText(text);
        ASSERT_TRUE(parsed.accepted) << text;
        auto* document = dynamic_cast<XMLDocument*>(parsed.result.get());
        const XMLElement& root = *document->getRoot();
        PlainDictionary expected = PlainDictionary::of(root);
        if (round % 100 != 0) {
            // Merging asks a gathered dictionary for its entries and for the ids it still holds
            // though they are marked.
            const XMLElement& other = *dynamic_cast<XMLDocument*>(before.result.get())->getRoot();
            EXPECT_TRUE(*root.dictionary()->merge(*other.dictionary()) ==
                        *foldedByOperations(root)->merge(*foldedByOperations(other)))
                << text;
        }
        before = parsed;
        for (const _eHndl<XMLDictionary>& actual : {root.dictionary(), foldedByOperations(root)}) {
            ASSERT_EQ(actual->getEntries().size(), int(expected.entries.size())) << text;
            for (const auto& [id, element] : expected.entries) {
                _eFrom<XMLElement> found = actual->lookup(_eString(std::wstring_view(id)));
                ASSERT_FALSE(found.isNull()) << text;
                EXPECT_EQ(found.get(), element) << text;
            }
            // Entries and marks stand in the order of their ids.
            const auto& entries = actual->getEntries().elements();
            for (int i = 1; i < entries.size(); ++i)
                EXPECT_EQ(rankStrings(entries.get(i - 1).first, entries.get(i).first), rankBelow) << text;
            const auto& marks = actual->getDuplicateIds().elements();
            for (int i = 1; i < marks.size(); ++i) EXPECT_EQ(rankStrings(marks.get(i - 1), marks.get(i)), rankBelow) << text;
            ASSERT_EQ(actual->getDuplicateIds().size(), int(expected.duplicates.size())) << text;
            // A dropped id is marked, and found no more.
            for (const std::wstring& id : expected.duplicates)
                EXPECT_TRUE(actual->getDuplicateIds().contains(_eString(std::wstring_view(id))) &&
                            (expected.entries.count(id) != 0 || actual->lookup(_eString(std::wstring_view(id))).isNull()))
                    << text;
        }
    }
}

// Gathers the relationships of `element`'s subtree into `gathering`, every element with an id
// related, as the tree's own gathering does.
void gatherTree(DictionaryGathering& gathering, const XMLElement& element) {
    gathering.enter();
    const auto& items = element.getContent()->getItems();
    for (int i = 0; i < items.size(); ++i)
        if (auto* child = dynamic_cast<const XMLElement*>(items.get(i).get())) gatherTree(gathering, *child);
    std::optional<DictionaryKey> id;
    if (element.hasAttribute(L"xmi.id")) id.emplace(element.attributeText(L"xmi.id", Context::shared()));
    gathering.leave(element, id ? &*id : nullptr, false);
}

// The associations and generalizations gathered are the fold's sets, member for member and in
// order: of one random tree with relationships nested in each other, and of a file's two parses
// side by side, whose elements are equal in pairs and so kept once.
TEST(XMLDictionary, GatheredRelationshipsAreTheFoldsSets) {
    std::mt19937 random(20261126);
    auto sameMembers = [](const auto& actual, const auto& expected, const std::string& text) {
        ASSERT_EQ(actual.size(), expected.size()) << text;
        for (int i = 0; i < actual.size(); ++i) EXPECT_EQ(actual.at(i).get(), expected.at(i).get()) << text;
    };
    auto sameRelations = [&](const XMLDictionary& actual, const XMLDictionary& expected, const std::string& text) {
        sameMembers(actual.getAssociations(), expected.getAssociations(), text);
        sameMembers(actual.getGeneralizations(), expected.getGeneralizations(), text);
    };
    for (int round = 0; round < 150; ++round) {
        std::string text = "<r>";
        for (int i = 0; i < 3; ++i) randomElement(random, 0, text, "i", true);
        TempDir dir;
        std::string path = dir.write("in.xml", text + "</r>");
        ParseOutcome first = parseFile(path), second = parseFile(path);
        ASSERT_TRUE(first.accepted && second.accepted) << text;
        const XMLElement& one = *dynamic_cast<XMLDocument*>(first.result.get())->getRoot();
        const XMLElement& other = *dynamic_cast<XMLDocument*>(second.result.get())->getRoot();
        _eHndl<XMLDictionary> folded = foldedByOperations(one);
        sameRelations(*one.dictionary(), *folded, text);
        DictionaryGathering both;
        both.enter();
        for (const XMLElement* tree : {&one, &other}) gatherTree(both, *tree);
        both.leave(one, nullptr, false);
        sameRelations(*std::move(both).dictionary(), *folded->merge(*foldedByOperations(other)), text);
    }
}

TEST(XMLDictionary, RelationshipsOfAClassFollowLaterAdditions) {
    auto association = [](const char* id, const char* classId) {
        return std::string("<UML:Association xmi.id='") + id +
               "'><UML:Association.connection><UML:AssociationEnd><UML:AssociationEnd.type><UML:Class xmi.idref='" +
               classId + "'/></UML:AssociationEnd.type></UML:AssociationEnd></UML:Association.connection></UML:Association>";
    };
    auto generalization = [](const char* id, const char* child) {
        return std::string("<UML:Generalization xmi.id='") + id +
               "'><UML:Generalization.child><UML:Class xmi.idref='" + child +
               "'/></UML:Generalization.child></UML:Generalization>";
    };
    ParseOutcome parsed =
        parseText("<r>" + association("as1", "A") + association("as2", "B") + generalization("g1", "A") + "</r>");
    ParseOutcome later = parseText("<s>" + association("as3", "A") + generalization("g2", "A") + "</s>");
    ASSERT_TRUE(parsed.accepted && later.accepted);
    _eHndl<XMLDictionary> first = dynamic_cast<XMLDocument*>(parsed.result.get())->getRoot()->dictionary();
    _eHndl<Context> context(new Context(first));

    // Asking builds the index of the first dictionary.
    ASSERT_EQ(first->associationsOf(L"A", context).size(), 1);
    EXPECT_EQ(first->associationsOf(L"B", context).size(), 1);
    EXPECT_EQ(first->associationsOf(L"C", context).size(), 0);
    EXPECT_EQ(first->generalizationsOf(L"A", context).size(), 1);

    // Dictionaries made from it, by adding or by merging, see their own sets.
    const XMLElement& more = *dynamic_cast<XMLDocument*>(later.result.get())->getRoot();
    const auto& items = more.getContent()->getItems();
    _eFrom<XMLElement> extraAssociation(dynamic_cast<XMLElement*>(items.get(0).get()));
    _eHndl<XMLDictionary> added = first->add(L"as3", extraAssociation);
    EXPECT_EQ(added->associationsOf(L"A", context).size(), 2);
    EXPECT_EQ(first->associationsOf(L"A", context).size(), 1);
    _eHndl<XMLDictionary> merged = first->merge(*more.dictionary());
    EXPECT_EQ(merged->associationsOf(L"A", context).size(), 2);
    EXPECT_EQ(merged->generalizationsOf(L"A", context).size(), 2);
    EXPECT_EQ(merged->associationsOf(L"B", context).size(), 1);
    // Relationships keep the order of the dictionary's sets.
    Associations all = merged->getAssociations();
    Associations ofA = merged->associationsOf(L"A", context);
    int at = 0;
    for (int i = 0; i < all.size(); ++i)
        if (at < ofA.size() && all.at(i).get() == ofA.at(at).get()) ++at;
    EXPECT_EQ(at, ofA.size());
}
