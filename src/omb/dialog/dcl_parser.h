// The parser that dcl_grammar.y is made into.
#pragma once

class cl_dcl_loader;

/// Reads all that the loader scans. 0, or 1 and 2 when the parser gave up; errors are the loader's.
int dlg_parse(cl_dcl_loader& loader);
