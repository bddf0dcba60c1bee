// DeafHost: what stands in for a host that wants to hear no more.

#pragma once

/// Puts an object of the module in the place of each attached interface of the host.
/// What is still on its way finds somebody to talk to, and the host hears nothing:
/// commands are refused, values and settings are not there.
void DeafenHost();
