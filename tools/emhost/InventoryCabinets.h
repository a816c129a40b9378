#pragma once

class CIExtensionModule;

// The cabinets part of "emhost inventory": the server's list of cabinets, then each cabinet
// as a client sees it through requests addressed to its number.
void PrintCabinets(CIExtensionModule& module);
