// Folder updates over random small models and random edits of the user confined to bodies:
// an unchanged model leaves the user's files as they are, a folder the user never touched gets
// exactly the new generation, the user's bodies survive whatever the model does to names and
// members, and a second update changes nothing.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <random>

#include "Generated/XMLImporter.h"
#include "environment/PlatformText.h"
#include "output/LineDiff.h"
#include "support/GeneratedText.h"
#include "support/TempDir.h"
#include "support/UpdateModels.h"

namespace {

using Files = std::map<std::string, std::string>;  // file name to bytes

// Every class file of a folder; `headless`: each without its header, which names the folder.
Files filesOf(const std::string& folder, bool headless = false) {
    Files files;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() != ".tv") continue;
        std::string text = readFile(entry.path());
        files[entry.path().filename().string()] = headless ? afterHeader(text) : text;
    }
    return files;
}

UpdateReport update(const std::string& folder, const std::string& model) {
    _eHndl<Environment> environment(new Environment());
    XMLImporter importer(environment.get());
    ImportExtensions extensions = everyExtension();
    extensions.useFixedTime = true;
    importer.chooseExtensions(extensions);
    bool parsed = false;
    importer.attemptParse(fromPlatformText(model), L"", parsed);
    EXPECT_TRUE(parsed);
    std::filesystem::create_directories(folder);
    return importer.updateFolder(fromPlatformText(folder + "/"), {}, L"", UpdateOptions());
}

class RandomModels {
public:
    explicit RandomModels(unsigned seed) : random(seed) {}

    std::vector<ModelClass> model() {
        std::vector<ModelClass> classes;
        for (int c = 0, n = pick(1, 3); c < n; ++c) {
            ModelClass made{"c" + std::to_string(c), freshName("K"), {}};
            for (int m = 0, count = pick(0, 6); m < count; ++m) made.members.push_back(member());
            classes.push_back(made);
        }
        return classes;
    }

    // The same model changed: members renamed, deleted and added, classes renamed.
    std::vector<ModelClass> changed(std::vector<ModelClass> classes) {
        for (ModelClass& c : classes) {
            if (pick(0, 4) == 0) c.name = freshName("K");
            std::vector<std::string> members;
            for (std::string m : c.members) {
                int fate = pick(0, 5);
                if (fate == 0) continue;  // deleted
                if (fate == 1) {
                    std::string id = m.substr(0, m.find(' ')), rest = m.substr(m.find(' ') + 1);
                    std::size_t call = rest.find("()");
                    m = id + " " + freshName("n") + (call == std::string::npos ? "" : rest.substr(call));
                }
                members.push_back(m);
            }
            if (pick(0, 2) == 0) members.insert(members.begin() + pick(0, int(members.size())), member());
            c.members = members;
        }
        return classes;
    }

    // Fills some bodies of a file with text of the user's, each its own, and lists them.
    std::string fill(const std::string& text, std::vector<std::string>& bodies) {
        Lines lines = splitLines(text);
        for (std::string& line : lines) {
            std::size_t body = line.rfind(" ?;");
            if (body == std::string::npos || pick(0, 2) == 0) continue;
            std::string filled = "v" + std::to_string(next++) + "! = 1";
            if (pick(0, 3) == 0) filled += "\n\t\t& w! = 2";
            line.replace(body + 1, 1, filled);
            bodies.push_back(filled);
        }
        return joinLines(lines);
    }

private:
    int pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); }
    std::string freshName(const char* lead) { return lead + std::to_string(next++); }
    std::string member() {
        std::string id = "m" + std::to_string(next++);
        const char* forms[] = {"", "()", "():int"};
        return id + " " + freshName("n") + forms[pick(0, 2)];
    }

    std::mt19937 random;
    int next = 0;
};

bool allUnchanged(const UpdateReport& report) {
    for (const FileUpdate& file : report.files)
        if (file.outcome != FileOutcome::unchanged) return false;
    return report.ok;
}

}  // namespace

TEST(FolderUpdateRandom, UsersBodiesSurviveAndUpdatesSettle) {
    for (unsigned seed = 1; seed <= 100; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomModels random(seed);
        TempDir temp;
        std::vector<ModelClass> before = random.model(), after = random.changed(before);
        std::string first = temp.write("first.xmi", modelText(before)), second = temp.write("second.xmi", modelText(after));
        std::string edited = temp / "edited", untouched = temp / "untouched", fresh = temp / "fresh";
        ASSERT_TRUE(update(edited, first).ok);
        ASSERT_TRUE(update(untouched, first).ok);
        // The user fills bodies; an update with the same model leaves every byte.
        std::vector<std::string> bodies;
        for (const ModelClass& c : before) {
            std::string path = edited + "/" + c.name + ".tv";
            std::string text = random.fill(readFile(path), bodies);
            std::ofstream(path, std::ios::binary) << text;
        }
        Files filled = filesOf(edited);
        EXPECT_TRUE(allUnchanged(update(edited, first)));
        EXPECT_EQ(filesOf(edited), filled);
        // Without edits, an update gives exactly what a fresh generation gives.
        ASSERT_TRUE(update(untouched, second).ok);
        ASSERT_TRUE(update(fresh, second).ok);
        EXPECT_EQ(filesOf(untouched, true), filesOf(fresh, true));
        // With edits, every body whose member is still there stands in its class's file, and
        // those of deleted members are kept; a second update changes nothing.
        UpdateReport merged = update(edited, second);
        for (const FileUpdate& file : merged.files)
            EXPECT_TRUE(file.conflicts.empty() && file.outcome != FileOutcome::foreign && file.outcome != FileOutcome::failed)
                << file.file << ": " << file.message << "\n" << modelText(after);
        EXPECT_TRUE(merged.ok) << merged.error;
        Files result = filesOf(edited);
        EXPECT_EQ(result.size(), after.size());
        std::string all;
        for (const auto& [name, text] : result) all += text;
        for (const std::string& text : bodies)
            EXPECT_NE(all.find(text.substr(0, text.find('\n'))), std::string::npos) << text << "\n" << all;
        EXPECT_TRUE(allUnchanged(update(edited, second)));
        EXPECT_EQ(filesOf(edited), result);
    }
}
