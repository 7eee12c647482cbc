! A Fortran caller of the zero finders (64-bit default integers): C05AYF with a user function, which receives
! IUSER and RUSER as passed, and the C05AZF reverse-communication loop. Stops non-zero on a mismatch.
program zeros_caller
  implicit none
  integer :: iuser(1), ifail, ind, ir, evaluations
  double precision :: ruser(1), x, y, fx, c(10)
  double precision, external :: square_minus

  iuser(1) = 0
  ruser(1) = 2.0d0
  ifail = 0
  call c05ayf(0.0d0, 3.0d0, 1.0d-12, 0.0d0, square_minus, x, iuser, ruser, ifail)
  if (ifail /= 0 .or. abs(x - sqrt(2.0d0)) > 1.0d-12 .or. iuser(1) < 3) then
    print '(a, i0, a, es24.16, a, i0)', 'FAILED: c05ayf IFAIL ', ifail, ', X ', x, ', calls ', iuser(1)
    error stop 1
  end if

  x = 0.0d0
  y = 1.0d0
  ir = 0
  ind = 1
  evaluations = 0
  do
    ifail = 0
    call c05azf(x, y, fx, 1.0d-12, ir, c, ind, ifail)
    if (ind == 0) exit
    fx = cos(x) - x
    evaluations = evaluations + 1
  end do
  if (ifail /= 0 .or. abs(x - 0.7390851332151607d0) > 1.0d-12 .or. evaluations > 20) then
    print '(a, i0, a, es24.16)', 'FAILED: c05azf IFAIL ', ifail, ', X ', x
    error stop 1
  end if
  print '(a)', '2 passed, 0 failed'
end program zeros_caller

! x**2 - RUSER(1); counts the calls in IUSER(1).
double precision function square_minus(x, iuser, ruser)
  implicit none
  double precision, intent(in) :: x
  integer, intent(inout) :: iuser(*)
  double precision, intent(inout) :: ruser(*)
  iuser(1) = iuser(1) + 1
  square_minus = x * x - ruser(1)
end function square_minus
