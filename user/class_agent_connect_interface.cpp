#include "qellib10/user/class_agent_connect_interface.h"

CClassAgentConnectInterface::~CClassAgentConnectInterface() = default;

int CClassAgentConnectInterface::Reserved4() { return 0; }
int CClassAgentConnectInterface::Reserved5() { return 0; }
int CClassAgentConnectInterface::Reserved6() { return 0; }
int CClassAgentConnectInterface::Reserved9() { return 0; }
int CClassAgentConnectInterface::Reserved10() { return 0; }
int CClassAgentConnectInterface::Reserved13() { return 0; }
int CClassAgentConnectInterface::Reserved20() { return 0; }
int CClassAgentConnectInterface::Reserved21() { return 0; }
int CClassAgentConnectInterface::Reserved27() { return 0; }
