// GNUstep's headers include this where the compiler knows blocks; their runtime is
// libBlocksRuntime.
