# SPDX-License-Identifier: MIT
"""The public headers in other languages, one module each: PATH of its binding, and raw(description), which writes what
the headers say. `description` reads them."""
