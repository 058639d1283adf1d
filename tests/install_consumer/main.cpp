// Builds one model with the installed headers, writes its document and
// prints the version it was built against.
#include <tsxml/tree/tsxml_tree.h>
#include <tsxml/tsxml.h>

#include <iostream>
#include <memory>
#include <sstream>

int main() {
  auto state = std::make_unique<ESForecastState>(
      ESModelSpec(ESModelSpec::ESSimple), std::valarray<double>{0.5},
      std::valarray<double>{0.1}, WIESSmState(10, 0));
  TSFModel model(new TSFModelImp(std::move(state), EstimationInfo()));

  TSXMLTree tree;
  std::ostringstream out;
  if (!tree.AddModelTree(model, TSXDictionaryRefs("m", "", "y")) ||
      !tree.WriteToStream(out) ||
      out.str().find("<StateLevel>10</StateLevel>") == std::string::npos ||
      OstraTimeXML::Format(0.5, false, nullptr) != "0.5") {
    std::cerr << "consumer: unexpected output\n" << out.str() << '\n';
    return 1;
  }
  int status = 0;
  if (TSXNormalQuantile(0.5) != 0.0 || TSXStudentTCDF(0.0, 5, status) != 0.5) {
    std::cerr << "consumer: unexpected distribution values\n";
    return 1;
  }
  std::cout << "consumer: ok, tsxml " << TSXML_VERSION << '\n';
  return 0;
}
