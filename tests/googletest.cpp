// Empty: this library exists for its precompiled header.
