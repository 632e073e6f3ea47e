# SPDX-License-Identifier: MIT
"""The rules of the tree, one module each: check(files) gives the findings, none when the rule is kept."""
