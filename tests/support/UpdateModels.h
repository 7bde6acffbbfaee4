// Small XMI models with fixed ids, for the tests of folder updates.
#pragma once

#include <string>
#include <vector>

// A class of a test model: its id, its name and its members, each "ID NAME" for an attribute of
// type int, "ID NAME()" for an operation and "ID NAME():int" for one with a result.
struct ModelClass {
    std::string id, name;
    std::vector<std::string> members;
};

inline std::string modelText(const std::vector<ModelClass>& classes) {
    std::string text = "<XMI xmi.version='1.2'><XMI.content><UML:Model xmi.id='m'><UML:Namespace.ownedElement>\n"
                       "<UML:DataType xmi.id='int' name='int'/>\n";
    const std::string intType = "<UML:DataType xmi.idref='int'/>";
    for (const ModelClass& c : classes) {
        text += "<UML:Class xmi.id='" + c.id + "' name='" + c.name + "'><UML:Classifier.feature>\n";
        for (const std::string& member : c.members) {
            std::string id = member.substr(0, member.find(' ')), name = member.substr(member.find(' ') + 1);
            std::size_t call = name.find("()");
            if (call == std::string::npos) {
                text += "<UML:Attribute xmi.id='" + id + "' name='" + name + "' visibility='public'><UML:StructuralFeature.type>" +
                        intType + "</UML:StructuralFeature.type></UML:Attribute>\n";
                continue;
            }
            std::string result = name.size() > call + 2
                                     ? "<UML:BehavioralFeature.parameter><UML:Parameter kind='return'><UML:Parameter.type>" +
                                           intType + "</UML:Parameter.type></UML:Parameter></UML:BehavioralFeature.parameter>"
                                     : "";
            text += "<UML:Operation xmi.id='" + id + "' name='" + name.substr(0, call) + "' visibility='public'>" + result +
                    "</UML:Operation>\n";
        }
        text += "</UML:Classifier.feature></UML:Class>\n";
    }
    return text + "</UML:Namespace.ownedElement></UML:Model></XMI.content></XMI>\n";
}
