// `ModelReport`: what the generated text will not carry of a model, by kind: the elements that
// no declaration is made for and that no declaration carries (enumerations, interfaces, data
// types, association classes, dependencies, constraints, comments, stereotypes, template
// parameters), the classes that the
// built-in names drop, the classes off the one path of XMI 1.x when they aren't searched for,
// references left unresolved, placeholders put into the text, and names changed. Each kind
// counts its items and names them in document order.
#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "xmi/ModelNames.h"
#include "xmi/ModelReader.h"

struct ReportKind {
    std::wstring title;           // "enumerations not generated"
    std::vector<_eString> items;  // each named, in document order
};

class ModelReport {
public:
    // The words of a report line: "Left out: 3 enumerations not generated: A, B, C", every item
    // with `everyItem`, else the first five and how many more.
    static _eSeq<_eString> lines(const std::vector<ReportKind>& kinds, bool everyItem);

    // The elements of the document of `root` that no declaration is made for, by the kind each
    // is, as `reader` tells the kinds of elements: all but those whose ids are `carried`
    // (declared, or taken into the text of a declaration).
    static std::vector<ReportKind> elementsLeftOut(const XMLElement& root, const ModelReader& reader,
                                                   const std::unordered_set<std::wstring>& carried = {});
    // The ids of the model elements whose text `record` carries: the class, its members and
    // literals, the realisations, comments and constraints taken into it.
    static void addCarried(const ClassRecord& record, std::unordered_set<std::wstring>& carried);
};
