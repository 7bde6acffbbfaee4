// The rest of a class model: enumerations, interfaces and their realisations, association
// classes, documentation and constraints, each a part of the extensions of its own.
#include <gtest/gtest.h>

#include <algorithm>

#include "support/ImportRun.h"
#include "xmi/ClassRenderer.h"

namespace {

std::string partsData(const std::string& name) {
    return readFile(std::string(MODELBRIDGE_TEST_DATA_DIR) + "/parts/" + name);
}

std::string corpusFile(const std::string& path) {
    return readFile(std::string(MODELBRIDGE_CORPUS_DIR) + "/../" + path);
}

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

std::wstring joined(const _eHndl<TarvaneOutput>& out) {
    std::wstring text;
    for (int i = 0; i < out->tokens().size(); ++i) text += (i ? L"|" : L"") + toWString(out->tokens().at(i));
    return text;
}

}  // namespace

// One model saved as XMI 1.2 (tagged values by tag and by tag definition, a comment referred to,
// a constraint owned, a «realize» abstraction), by Papyrus (owned comments and rules, an
// interface realisation) and by Enterprise Architect (documentation in its own records, a
// realisation as a packaged element, member ends owned by the classes): one text.
TEST(ModelParts, OneModelThreeToolsOneText) {
    const std::string golden = partsData("parts.tv");
    ImportRun uml14(partsData("parts.xmi"), everyExtension());
    ASSERT_TRUE(uml14.parsed && uml14.generated);
    EXPECT_EQ(uml14.single, golden);
    std::vector<std::wstring> sorted = uml14.classes;
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ(sorted, (std::vector<std::wstring>{L"Canvas", L"Circle", L"Colour", L"Drawable", L"Placement", L"Shape"}));
    EXPECT_EQ(uml14.files["Colour.tv"], "// The colours a shape can have.\nclass Colour ^= enum\n\t// The colour of blood.\n"
                                        "\tred, green, blue\nend;\n\n\n// End of file.\n");
    for (const char* shape : {"parts-papyrus.uml", "parts-ea.xmi"}) {
        ImportRun uml2(partsData(shape), everyExtension(), shape);
        EXPECT_TRUE(uml2.errors.empty()) << shape;
        EXPECT_EQ(uml2.classes, uml14.classes) << shape;
        EXPECT_EQ(uml2.files, uml14.files) << shape;
        EXPECT_EQ(uml2.single, golden) << shape;
    }
}

// Each part is a switch of its own: off, its elements are neither declared nor carried.
TEST(ModelParts, EachPartItsOwnSwitch) {
    for (const char* shape : {"parts.xmi", "parts-papyrus.uml"}) {
        auto without = [&](bool ImportExtensions::*field) {
            ImportExtensions extensions = everyExtension();
            extensions.*field = false;
            return ImportRun(partsData(shape), extensions, shape);
        };
        auto listed = [](const ImportRun& run, const wchar_t* name) {
            return std::count(run.classes.begin(), run.classes.end(), std::wstring(name)) == 1;
        };
        ImportRun noEnumerations = without(&ImportExtensions::enumerations);
        EXPECT_FALSE(listed(noEnumerations, L"Colour")) << shape;
        EXPECT_FALSE(contains(noEnumerations.single, "enum")) << shape;
        ImportRun noInterfaces = without(&ImportExtensions::interfaces);
        EXPECT_FALSE(listed(noInterfaces, L"Shape") || listed(noInterfaces, L"Drawable")) << shape;
        EXPECT_TRUE(contains(noInterfaces.single, "\nclass Circle ^=\n")) << shape;
        ImportRun noAssociationClasses = without(&ImportExtensions::associationClasses);
        EXPECT_FALSE(listed(noAssociationClasses, L"Placement")) << shape;
        EXPECT_FALSE(contains(noAssociationClasses.single, "var circles")) << shape;
        ImportRun noDocumentation = without(&ImportExtensions::documentation);
        EXPECT_FALSE(contains(noDocumentation.single, "// A round") || contains(noDocumentation.single, "blood")) << shape;
        EXPECT_TRUE(contains(noDocumentation.single, "// constraint positiveRadius (OCL): radius > 0\n")) << shape;
        ImportRun noConstraints = without(&ImportExtensions::constraints);
        EXPECT_FALSE(contains(noConstraints.single, "constraint")) << shape;
        EXPECT_TRUE(contains(noConstraints.single, "// A round shape.\n")) << shape;
    }
}

// Text of the model as comments: every kind of line end breaks a line, other control characters
// are blanks, blanks at line ends and runs of empty lines go; a constraint without a name or a
// language leaves them out and continues its body on lines of its own; literals are escaped.
TEST(ModelParts, NotesAsCommentLines) {
    ClassRecord record;
    record.kind = ClassKind::enumeration;
    record.id = L"e";
    record.name = NameRecord::plain(L"Mode");
    record.notes.documentation = _eString(L"\n\nFirst  \r\nsecond\x01line\rthird\n\n\n\tindented\x2028last\n");
    record.notes.constraints.push_back({L"k", NameRecord(), std::nullopt, L"  a > 0\nand b > 0"});
    record.notes.constraints.push_back({L"k2", NameRecord::plain(L"x\ny"), _eString(L" OCL "), L""});
    LiteralRecord reserved{L"l", NameRecord::plain(L"class"), {}};
    reserved.notes.documentation = _eString(L"kept");
    record.literals = {reserved, {L"m", NameRecord(), {}}};
    EXPECT_EQ(joined(ClassRenderer::classDeclaration(record)),
              L"// First|// second line|// third|//|// \tindented|// last|// constraint: a > 0|// and b > 0|"
              L"// constraint x y (OCL):|class|Mode|^=|enum|// kept|class_|,|?|end|;");
    std::vector<Declaration> declarations = ClassRenderer::classDeclaration(record)->declarations();
    ASSERT_EQ(declarations.size(), 2u);
    EXPECT_EQ(declarations[0].part, DeclarationPart::classHead);
    EXPECT_EQ(declarations[0].count, 17);
}

// The corpus: Umbrello's enumerations with their literals and its documented classes and
// operations; the abstractions «realize» of the UML 1.4 files; Eclipse UML2's interface
// realisations, whose interfaces stand in files not at hand.
TEST(ModelParts, TheCorpus) {
    ImportRun umbrello(corpusFile("xmi/umbrello/CodeGeneration.xmi"), everyExtension(), "CodeGeneration.xmi");
    EXPECT_EQ(umbrello.files["AccessorType.tv"],
              "class AccessorType ^= enum GET, SET, ADD, REMOVE, LIST\nend;\n\n\n// End of file.\n");
    EXPECT_TRUE(contains(umbrello.files["ContentType.tv"], "// Describes the creation of the content.\n"
                                                            "// @enum AutoGenerated  the content was generated by code "
                                                            "generation itself\n"));
    EXPECT_TRUE(contains(umbrello.files["TextBlock.tv"],
                         "// The fundemental unit of text within an output file containing code.\nclass TextBlock ^="));
    EXPECT_TRUE(contains(umbrello.files["TextBlock.tv"], "\t// Add text to this object.\n\t// @param text   the text to add\n"
                                                         "\tschema appendText"));

    ImportRun sac(corpusFile("xmi/su4sml/SAC_example.xmi"), everyExtension(), "SAC_example.xmi");
    EXPECT_TRUE(contains(sac.files["AnalysisPartner.tv"], "class AnalysisPartner ^= inherits Analyzer\n"));
    EXPECT_TRUE(contains(sac.files["StorageProvider.tv"], "deferred class StorageProvider ^=\n"));
    EXPECT_EQ(sac.files.count("AnalysisStorageRel.tv"), 1u);

    ImportRun jabber(corpusFile("xmi2/uml2casestudies/InstantMessengerJabber.uml"), everyExtension(),
                     "InstantMessengerJabber.uml");
    EXPECT_TRUE(contains(jabber.files["Jabber.tv"], "deferred class Jabber ^= inherits ?, ?, ?, ?\n"));
    EXPECT_TRUE(contains(jabber.files["State.tv"], "// From Jabber\ndeferred class State ^="));
}

// An exporter that writes an enumeration as a class stereotyped «enumeration» has its
// attributes as the literals; such a class without attributes stays a class.
TEST(ModelParts, EnumerationsWrittenAsClasses) {
    ImportRun run(partsData("stereotyped-enumeration.xmi"), everyExtension());
    EXPECT_EQ(run.single, "// Colours.\nclass Colour ^= enum\n\t// Red.\n\tred, green\nend;\n\n"
                          "class Size ^=\ninterface\nend;\n\n\n// End of file.\n");
    ImportExtensions noEnumerations = everyExtension();
    noEnumerations.enumerations = false;
    EXPECT_TRUE(contains(ImportRun(partsData("stereotyped-enumeration.xmi"), noEnumerations).single, "\tvar red: ?;\n"));
}

// The "comment" attribute is the text itself, never a list of ids; what an element refers to as
// its comment or constraint counts only when it is one.
TEST(ModelParts, ReferencesFollowedOnlyToTheirKind) {
    ImportRun run("<XMI xmi.version='1.2'><XMI.content><UML:Model xmi.id='m' name='M'><UML:Namespace.ownedElement>"
                  "<UML:Class xmi.id='c1' name='Note' comment='See c2 for more.' constraint='c2'/>"
                  "<UML:Class xmi.id='c2' name='Other'/></UML:Namespace.ownedElement></UML:Model></XMI.content></XMI>",
                  everyExtension());
    EXPECT_EQ(run.files["Note.tv"], "// See c2 for more.\nclass Note ^=\ninterface\nend;\n\n\n// End of file.\n");
}
