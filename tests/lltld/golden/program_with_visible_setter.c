// archive=0 mode=9 A.c:33 LLT_DISABLE_VISIBILITY=-1
/*********************************************************
覆盖率工具自动生成的代码
*********************************************************/

#include <stdio.h> 
#include <stdlib.h> 
#include <errno.h> 

#ifdef __cplusplus
extern "C" {
#endif

extern void* QMR_CreateCoverageListExt(const char *pModName, const char* covdbpath,
    unsigned long iCount, int iClass);
extern int QMR_AddCoverageBuf(void *pMod, unsigned int iFileId, char *pFileName,
    unsigned int *pCovBuf, unsigned int iBufSize, unsigned int iInstSize);
extern void QMR_DumpModuleCovdata(char* modulename); 
extern void TUSK_CovSetTimerPolicy(int time_interval);    
extern void TUSK_CovSetSignalPolicy(int signal_no);   
extern void TUSK_CovSetlltcovRootpath(const char* rootpath);   
extern void TUSK_CovSetSupportVbsFlag(unsigned int uiFlag);   
extern void TUSK_CovSetCompilePolicy(int overlappedCompile);   
extern int  QMRGetTargetState();
extern void QMRSetTargetState(int state);
extern int  QMRInit(int iType, char *pProjName);
extern int  ZKT_ServerInit(unsigned int iHostPort);

extern char g_QMRCovData_A[];

static unsigned short g_TUSKSockBindPort   = 61000;
extern void TUSK_UserAgentConfig();
void TUSK_SetSockBindPort(unsigned short usPort)
{
	g_TUSKSockBindPort = usPort;
}


void ZJ_Start_my_mod_1()
{
    TUSK_CovSetCompilePolicy(1);
    TUSK_CovSetSupportVbsFlag(1);
    void *pMod = QMR_CreateCoverageListExt("my-mod-1", "w", 1, 10);
    if(NULL == pMod)
    {
      return;
    }

    QMR_AddCoverageBuf(pMod, 0, (char*)"A.c", (unsigned int *)g_QMRCovData_A, 
        132, 33);
		if(!QMRInit(0, (char*)"{\"projectname\":\"demo\",\"buid\":\"B\"}"))
		{
			printf("Call QMRInit failed!");
			return;
		}

	if(!QMRGetTargetState())
	{
		TUSK_UserAgentConfig();
		if(!ZKT_ServerInit(g_TUSKSockBindPort))
		{
			printf("[demo]Server start failed!\n");
			return;
		}
		QMRSetTargetState(1);
	}

    return ;
}
#ifdef __cplusplus
}
#endif


__attribute ((constructor)) void tusk_init_my_mod_1(void)
{
    ZJ_Start_my_mod_1();
    errno = 0;
}
__attribute ((destructor)) void tusk_fini_my_mod_1(void)
{
    QMR_DumpModuleCovdata((char*)"my_mod_1");
    errno = 0;
}
