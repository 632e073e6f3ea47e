// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/sites/CertificateQuestion.h"

#include <cctype>

#include "hosts/qxbrowse/ui/Dialog.h"
#include "hosts/qxbrowse/ui/Names.h"
#include "hosts/qxbrowse/ui/Utf8.h"

namespace browse {
namespace {

using namespace certificate_question;

constexpr const wchar_t* kParagraph = L"\r\n\r\n";

// As other tools show it, for people who compare: "96:B6:38:...", in two lines.
std::wstring shownPin(const std::string& pin) {
  std::wstring shown;
  for (std::size_t digit = 0; digit < pin.size(); ++digit) {
    if (digit == pin.size() / 2) {
      shown += L"\r\n";
    } else if (digit > 0 && digit % 2 == 0) {
      shown += L':';
    }
    shown += static_cast<wchar_t>(std::toupper(static_cast<unsigned char>(pin[digit])));
  }
  return shown;
}

// Each fact is a paragraph of its own, and what the server has chosen comes last: whatever it writes, also
// from right to left, does not reach into the others.
std::wstring factsOf(const Site& site, const ShownCertificate& certificate) {
  std::wstring facts = text(Text::certificateFacts, {shownPin(certificate.fingerprint)}) + kParagraph;
  if (!site.pin.empty()) facts += text(Text::certificateAccepted, {shownPin(site.pin)}) + kParagraph;
  facts += text(Text::certificateReason, {fromLibrary(certificate.reason)});
  if (certificate.validFrom.empty()) return facts;
  facts += kParagraph;
  facts += text(Text::certificateValid, {fromUtf8(certificate.validFrom), fromUtf8(certificate.validTo)});
  facts += kParagraph + text(Text::certificateSubject, {fromLibrary(certificate.subject)});
  if (certificate.issuer.empty()) return facts;
  return facts + kParagraph + text(Text::certificateIssuer, {fromLibrary(certificate.issuer)});
}

class CertificateDialog : public Dialog {
 public:
  CertificateDialog(const Site& site, const ShownCertificate& certificate)
      : Dialog(Text::certificateTitle, 280, 220), m_site(site), m_certificate(certificate) {
    addText(kWarning, {7, 7, 266, 34});
    addField(kFacts, {7, 44, 266, 134}, ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL | WS_VSCROLL);
    addLabel(Text::certificateAdvice, {7, 182, 266, 10});
    addButton(kForGood, Text::certificateForGood, {60, 199, 68, 14});
    addButton(kOnce, Text::certificateOnce, {132, 199, 68, 14});
    addButton(kNo, Text::certificateNo, {204, 199, 69, 14}, BS_DEFPUSHBUTTON);
  }

 private:
  WORD begin() override {
    const Text warning = m_site.pin.empty() ? Text::certificateUnknown : Text::certificateChanged;
    setText(kWarning, text(warning, {fromUtf8(m_site.host)}));
    setText(kFacts, factsOf(m_site, m_certificate));
    return kNo;
  }

  void command(WORD id, WORD notification) override {
    if (notification != BN_CLICKED) return;
    if (id == kForGood) end(static_cast<INT_PTR>(Trust::forGood));
    if (id == kOnce) end(static_cast<INT_PTR>(Trust::once));
    if (id == kNo) end(static_cast<INT_PTR>(Trust::no));
  }

  const Site& m_site;
  const ShownCertificate& m_certificate;
};

}  // namespace

Trust askAboutCertificate(HWND owner, const Site& site, const ShownCertificate& certificate) {
  return static_cast<Trust>(CertificateDialog(site, certificate).show(owner));
}

}  // namespace browse
