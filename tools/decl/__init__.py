"""The declaration language of the library's routines: parser, checks and emitters (docs/declarations.md)."""
