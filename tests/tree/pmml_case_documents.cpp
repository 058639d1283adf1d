// Writes the documents of the PMML schema cases for the consistency test:
// DIR/consistent/NAME.xml and DIR/default/NAME.xml for every case. DIR and
// its two folders must exist.
//
//   tsxml_pmml_case_documents DIR
#include <fstream>
#include <iostream>
#include <string>

#include "tree/pmml_schema_cases.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: tsxml_pmml_case_documents DIR\n";
    return 2;
  }
  const std::string dir = argv[1];
  for (const pmml_cases::Case& c : pmml_cases::AllCases()) {
    for (const bool consistent : {true, false}) {
      const std::string path =
          dir + (consistent ? "/consistent/" : "/default/") + c.name + ".xml";
      std::ofstream out(path, std::ios::binary);
      out << pmml_cases::WriteCase(c, consistent);
      if (!out) {
        std::cerr << "tsxml_pmml_case_documents: cannot write " << path << "\n";
        return 1;
      }
    }
  }
  return 0;
}
