# SPDX-License-Identifier: MIT
"""The bill of materials of a package, in SPDX 2.3: its files, and what of others is linked into library and hosts."""

import datetime
import hashlib
import json
import re
import uuid

from .sums import digest
from .third_party import HOST, HOST_PARTS, PARTS

LICENCE = "MIT"


def _identifier(text):
    return "SPDXRef-" + re.sub(r"[^A-Za-z0-9.-]+", "-", text)


def _file(number, root, path):
    return {
        "SPDXID": f"SPDXRef-File-{number}",
        "fileName": f"./{path}",
        "checksums": [{"algorithm": name.upper(), "checksumValue": digest(root / path, name)}
                      for name in ("sha1", "sha256")],
        "licenseConcluded": "NOASSERTION",
        "copyrightText": "NOASSERTION",
    }


def _verification_code(files):
    sums = sorted(sum["checksumValue"] for file in files for sum in file["checksums"] if sum["algorithm"] == "SHA1")
    return hashlib.sha1("".join(sums).encode()).hexdigest()


def _product(name, version, files, left_out):
    return {
        "SPDXID": _identifier(name), "name": name, "versionInfo": version,
        "downloadLocation": "NOASSERTION", "supplier": "NOASSERTION",
        "filesAnalyzed": True,
        "packageVerificationCode": {
            "packageVerificationCodeValue": _verification_code(files),
            "packageVerificationCodeExcludedFiles": [f"./{path}" for path in left_out]},
        "licenseConcluded": LICENCE, "licenseDeclared": LICENCE, "licenseInfoFromFiles": ["NOASSERTION"],
        "copyrightText": "NOASSERTION", "primaryPackagePurpose": "LIBRARY",
    }


def _third_party(part):
    return {
        "SPDXID": _identifier(part.name), "name": part.name, "versionInfo": part.version, "comment": part.what,
        "homepage": part.home, "downloadLocation": "NOASSERTION", "supplier": "NOASSERTION",
        "originator": f"Organization: {part.holder}", "filesAnalyzed": False,
        "licenseConcluded": part.licence, "licenseDeclared": part.licence,
        "copyrightText": "NOASSERTION",
        "externalRefs": [{
            "referenceCategory": "PACKAGE-MANAGER", "referenceType": "purl",
            "referenceLocator": f"pkg:deb/debian/{part.packages[0]}@{part.version.replace('+', '%2B')}"}],
    }


def _relationship(element, kind, other):
    return {"spdxElementId": element, "relationshipType": kind, "relatedSpdxElement": other}


def _own_licences(parts):
    return [{"licenseId": reference, "extractedText": part.text(), "name": f"Notices of {part.name}"}
            for part in parts for reference in re.findall(r"LicenseRef-[\w.-]+", part.licence)]


def bill(root, system, name, version, moment, left_out):
    """The document as text, of the files below `root` but those of `left_out`; `moment` is in seconds since 1970."""
    paths = sorted(str(path.relative_to(root)) for path in root.rglob("*") if path.is_file())
    files = [_file(number, root, path) for number, path in enumerate(paths, 1) if path not in left_out]
    product, parts = _product(name, version, files, left_out), PARTS[system]
    linked, in_host = list(map(_third_party, parts)), list(map(_third_party, HOST_PARTS))
    packages = [product, *linked, *in_host]
    host = next(file for file in files if file["fileName"].removesuffix(".exe") == f"./{HOST}")
    code = product["packageVerificationCode"]["packageVerificationCodeValue"]
    created = datetime.datetime.fromtimestamp(moment, datetime.timezone.utc)
    return json.dumps({
        "spdxVersion": "SPDX-2.3", "dataLicense": "CC0-1.0", "SPDXID": "SPDXRef-DOCUMENT",
        "name": f"{name}-{version}-{system}-x64",
        "documentNamespace": f"https://spdx.org/spdxdocs/{name}-{uuid.uuid5(uuid.NAMESPACE_OID, code)}",
        "creationInfo": {"created": created.strftime("%Y-%m-%dT%H:%M:%SZ"), "creators": ["Tool: tools-package"]},
        "packages": packages, "files": files,
        "hasExtractedLicensingInfos": _own_licences(parts),
        "relationships": [
            _relationship("SPDXRef-DOCUMENT", "DESCRIBES", product["SPDXID"]),
            *(_relationship(product["SPDXID"], "STATIC_LINK", package["SPDXID"]) for package in linked),
            *(_relationship(host["SPDXID"], "STATIC_LINK", package["SPDXID"]) for package in in_host),
            *(_relationship(product["SPDXID"], "CONTAINS", file["SPDXID"]) for file in files)],
    }, indent=1) + "\n"
