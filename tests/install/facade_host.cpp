// A C++17 host of the facade, built outside the project: it lists the classes of a model and
// renders the first.
#include <cstdio>

#include <modelbridge/modelbridge.hpp>

static_assert(__cplusplus == 201703L, "this host is built as C++17");

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    modelbridge::Model model = modelbridge::Model::parse(argv[1]);
    for (const modelbridge::Diagnostic& diagnostic : model.diagnostics()) std::fprintf(stderr, "%s\n", diagnostic.text.c_str());
    if (!model.ok()) return 1;
    for (const std::string& name : model.classes()) std::printf("%s\n", name.c_str());
    return model.renderClass(model.classes().at(0)).find("// End of file.\n") != std::string::npos ? 0 : 1;
}
