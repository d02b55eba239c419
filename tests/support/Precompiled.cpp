// The precompiled headers need a target, and a target needs a source.
