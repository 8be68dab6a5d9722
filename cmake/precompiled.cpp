// Carries the precompiled headers; it holds nothing itself.
