// Live transmit equalisation: FFE and slew; and what the transmit caches share with it.
#pragma once

#include "arguments/word_reader.h"
#include "commands/link_table.h"

CmdStatus showFFECmdHandler(int wordCount, char* words[]);
CmdStatus setFFECmdHandler(int wordCount, char* words[]);
CmdStatus showSlewCmdHandler(int wordCount, char* words[]);
CmdStatus setSlewCmdHandler(int wordCount, char* words[]);
CmdStatus showTxParamsCmdHandler(int wordCount, char* words[]);
CmdStatus setTxParamsCmdHandler(int wordCount, char* words[]);

// Takes the six words of an FFE setting: the mode keyword, then power and c0 to c3 as whole numbers.
SerDesTxRateParams takeFFE(WordReader& in);

// The rows from "ffe mode" to "c3 (postcursor)".
void printFFERows(const TxTable& table);

void printSlewRow(const TxTable& table);
