// Members in every form exporters write: what the real files say about each class, read from
// their text without the library, stands in that class's generated text.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <vector>

#include "support/CorpusScan.h"
#include "support/ImportRun.h"

namespace {

ImportExtensions everyForm() {
    ImportExtensions extensions;
    extensions.anywhere = true;
    extensions.everyForm = true;
    extensions.decodeReferences = true;
    return extensions;
}

struct Tag {
    std::string text;  // from "<" to ">", exclusive
    bool closes() const { return text.size() > 1 && text[0] == '/'; }
    bool empty() const { return !text.empty() && text.back() == '/'; }
    bool is(const std::string& name) const {
        return text.compare(0, name.size(), name) == 0 &&
               (text.size() == name.size() || std::string(" \t\r\n/").find(text[name.size()]) != std::string::npos);
    }
    std::string get(const std::string& attribute) const {
        std::string value;
        attributeValue(text, attribute, value);
        return value;
    }
};

std::string decoded(std::string text) {
    for (auto [entity, character] : {std::pair{"&amp;", "&"}, {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}})
        for (std::size_t at = text.find(entity); at != std::string::npos; at = text.find(entity, at))
            text.replace(at, std::string(entity).size(), character);
    return text;
}

// What the text of the model says each class (by name) holds: the words its declaration must
// carry, each with what it stands for.
std::map<std::string, std::vector<std::string>> expectedWords(const std::string& model) {
    std::vector<Tag> tags;
    for (std::size_t at = model.find('<'); at != std::string::npos; at = model.find('<', at + 1))
        tags.push_back({model.substr(at + 1, model.find('>', at) - at - 1)});
    std::map<std::string, std::string> names;  // of every element of the model by its id
    std::set<std::string> classIds;
    for (const Tag& tag : tags) {
        if (tag.text.compare(0, 4, "UML:") != 0 || tag.get("xmi.id").empty()) continue;
        names.emplace(tag.get("xmi.id"), decoded(tag.get("name")));
        if (tag.is("UML:Class")) classIds.insert(tag.get("xmi.id"));
    }
    std::map<std::string, std::vector<std::string>> words;
    std::vector<std::string> open;  // the classes around the current tag
    std::vector<Tag> ends;          // of the association under way
    for (const Tag& tag : tags) {
        if (tag.is("UML:Class") && !tag.empty()) open.push_back(decoded(tag.get("name")));
        if (tag.is("/UML:Class") && !open.empty()) open.pop_back();
        if (tag.is("UML:Attribute") && !open.empty()) words[open.back()].push_back("var " + decoded(tag.get("name")) + ":");
        if (tag.is("UML:Generalization") && classIds.count(tag.get("child")) != 0)
            words[names[tag.get("child")]].push_back(names[tag.get("parent")]);
        if (tag.is("UML:AssociationEnd")) ends.push_back(tag);
        if (tag.is("/UML:Association") && ends.size() == 2) {
            for (int side = 0; side < 2; ++side) {
                const Tag& other = ends[1 - side];
                std::string role = decoded(other.get("name"));
                if (other.get("isNavigable") == "true" && classIds.count(ends[side].get("type")) != 0)
                    words[names[ends[side].get("type")]].push_back("var " + (role.empty() ? "my" + names[other.get("type")] : role) + ":");
            }
        }
        if (tag.is("/UML:Association")) ends.clear();
    }
    return words;
}

}  // namespace

// Umbrello writes attributes, generalizations and association ends as empty-element tags with
// ids in XML attributes, and entities in names: every one reaches the text of its class.
TEST(EveryForm, WhatTheRealFilesSayReachesTheText) {
    struct Row {
        const char* file;
        int classes;
        int words;  // at least
    } rows[] = {{"umbrello/CodeGeneration.xmi", 94, 8 + 88}, {"umbrello/all_associations.xmi", 7, 8}};
    for (const Row& row : rows) {
        std::string model = readFile(std::string(MODELBRIDGE_CORPUS_DIR) + "/" + row.file);
        ImportRun run(model, everyForm());
        EXPECT_EQ(int(run.classes.size()), row.classes) << row.file;
        int checked = 0;
        for (const auto& [className, words] : expectedWords(model)) {
            std::string text = run.files[className + ".tv"];
            for (const std::string& word : words) {
                ++checked;
                EXPECT_NE(text.find(word), std::string::npos) << row.file << ": " << className << " lacks " << word;
            }
        }
        EXPECT_GE(checked, row.words) << row.file;
        EXPECT_EQ(run.single.find("[[EntityRef"), std::string::npos) << row.file;
        EXPECT_EQ(run.single.find("var ?:"), std::string::npos) << row.file;
    }
}

// The older forms, in one model: features straight under the class with the older attribute
// names and types by name; a multiplicity and a participant in XML attributes; a
// generalization by "subtype" and "supertype". Each line stands in the text in every form, and
// none of them on the specified road.
TEST(EveryForm, OlderFormsReadIntoTheSameDeclarations) {
    const std::string model = readFile(std::string(MODELBRIDGE_TEST_DATA_DIR) + "/extensions/older-forms.xmi");
    ImportRun every(model, everyForm());
    ImportRun specified(model, {});
    const std::pair<const char*, const char*> expected[] = {
        {"Account.tv", "deferred class Account"},
        {"Account.tv", "abstract\n\tvar balance: int;"},
        {"Account.tv", "schema deposit (amount: int) post ?;"},
        {"Account.tv", "nonmember function total_: int ^= ?;"},
        {"Bank.tv", "inherits Account"},
        {"Bank.tv", "var accounts: set of ref from Account;"},
    };
    for (const auto& [file, line] : expected) {
        EXPECT_NE(every.files[file].find(line), std::string::npos) << file << " lacks " << line << ":\n" << every.files[file];
        EXPECT_EQ(specified.files[file].find(line), std::string::npos) << file << " has " << line;
    }
}
