// SPDX-License-Identifier: Apache-2.0
// mutool run set-base-url.js URL OUTPUT-FOLDER FILE...: sets the base URL by an incremental update.
var url = scriptArgs[0], folder = scriptArgs[1];
for (var i = 2; i < scriptArgs.length; ++i) {
  var pdf = new PDFDocument(scriptArgs[i]);
  var uri = pdf.newDictionary();
  uri.put("Base", pdf.newString(url));
  pdf.getTrailer().get("Root").put("URI", uri);
  pdf.save(folder + "/" + scriptArgs[i].split("/").pop(), "incremental");
}
