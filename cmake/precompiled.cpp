// An empty source file for the precompiled headers.
